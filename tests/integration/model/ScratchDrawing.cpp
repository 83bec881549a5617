#include <numeric>

#include "model/BlockModel.h"
#include "model/Drawing.h"
#include "model/Notation.h"
#include "model/ScratchModel.h"

namespace {

constexpr std::uint32_t kMostBytes = 244;

struct Access {
    const char* keyword;
    std::uint32_t width;
    std::uint32_t readCode;
    bool isChecked;
};

constexpr Access kAccesses[] = {
    {"8bit", 1, 0, false}, {"16bit", 2, 2, false}, {"32bit", 4, 4, false}, {"8bitcrc", 1, 6, true}};

/// Both where the access may be made, and just beyond.
std::uint32_t drawAddress(Drawing& drawing, const Access& access, std::uint32_t size) {
    const std::uint32_t window = windowOf(drawing.part);
    const std::uint32_t inside =
        window + drawing.dice.below((kWindowSize - size) / access.width + 1) * access.width;
    if (drawing.isAlone && drawing.dice.oneIn(8))
        return drawing.dice.oneOf(std::vector<std::uint32_t>{0, 1, access.width, 0x1000 - access.width,
                                                             kScratchSize - size - access.width});
    if (drawing.dice.oneIn(12))
        return drawing.dice.oneOf(std::vector<std::uint32_t>{kScratchSize - size, kScratchSize,
                                                             kScratchSize + 4, 0x7FFFFFFF, 0x80000000,
                                                             0xFFFFFFFC, 0xFFFFFFFF});
    // No multiple of the width, where there is such a thing.
    return drawing.dice.oneIn(16) ? inside + access.width / 2 : inside;
}

std::uint32_t sumOf(const std::string& bytes) {
    return std::accumulate(
               bytes.begin(), bytes.end(), 0U,
               [](std::uint32_t sum, char byte) { return sum + static_cast<unsigned char>(byte); }) &
           0xFF;
}

Request drawRead(Drawing& drawing, const Access& access, std::uint32_t count, std::uint32_t address) {
    if (!drawing.inFrames)
        return drawing.line(std::string("memory read ") + access.keyword,
                            {drawing.number(count), drawing.number(address)});
    const std::string tag = access.isChecked ? drawing.dice.bytes(2) : "";
    return Request::ofFrame(std::string{'t', asByte(access.readCode), asByte(count)} +
                            bigEndian32(address) + tag);
}

Request drawWrite(Drawing& drawing, const Access& access, std::uint32_t count, std::uint32_t address) {
    Dice& dice = drawing.dice;
    const std::uint32_t size = std::min(count * access.width, kMostBytes);
    // Now and then there is more than is wanted, or less.
    std::string data = dice.bytes(dice.oneIn(12) ? dice.below(kMostBytes) : size);
    const std::uint32_t sum = sumOf(data.substr(0, size)) ^ (dice.oneIn(8) ? 0x55 : 0);
    if (!drawing.inFrames) {
        Request request =
            drawing.line(std::string("memory write ") + access.keyword,
                         {drawing.number(count), drawing.number(address), drawing.data(data)});
        if (access.isChecked)
            request.words.push_back(drawing.number(sum));
        return request;
    }
    const std::string check = access.isChecked ? dice.bytes(2) + asByte(sum) : "";
    return Request::ofFrame(std::string{'t', asByte(access.readCode + 1), asByte(count)} +
                            bigEndian32(address) + check +
                            data.substr(0, kMostBytes - (access.isChecked ? 1 : 0)));
}

} // namespace

Request drawMemory(Drawing& drawing) {
    const Access& access = drawing.dice.oneOf(kAccesses);
    const std::uint32_t last = kMostBytes / access.width;
    const std::uint32_t count =
        drawing.edgeOr(drawing.dice.below(last), {0, 1, last, last, last + 1, 255});
    const std::uint32_t address =
        drawAddress(drawing, access, std::min(count * access.width, kMostBytes));
    return drawing.dice.oneIn(2) ? drawRead(drawing, access, count, address)
                                 : drawWrite(drawing, access, count, address);
}

Request drawChecksum(Drawing& drawing) {
    constexpr std::uint32_t kShortest = 4, kLongest = 4096, kOneLongIn = 4000;
    Dice& dice = drawing.dice;
    std::uint32_t type = dice.oneIn(12) ? drawing.edgeOr(dice.below(256), {1, 2, 255}) : 0;
    std::uint32_t length = dice.between(kShortest, kLongest);
    std::uint32_t offset = windowOf(drawing.part) + dice.below(kWindowSize - length + 1);
    if (dice.oneIn(4)) {
        const std::uint32_t most = kScratchSize - 1;
        struct Range {
            std::uint32_t offset, length;
        };
        const Range ranges[] = {{offset, dice.below(kShortest)},
                                {kScratchSize, length},
                                {0xFFFFFFFF, length},
                                {offset, kScratchSize},
                                {offset, 0xFFFFFFFF},
                                {kScratchSize - length, length},
                                {most - length, length},
                                {kScratchSize - 4, 4},
                                {1, most},
                                {most, most},
                                {most, 1}};
        // Ranges that others write to are read by who is alone.
        const Range& range = dice.oneOf(ranges);
        offset = range.offset;
        length = range.length;
    }
    if (drawing.isAlone && dice.oneIn(kOneLongIn)) {
        offset = 0;
        length = kScratchSize - 1;
    }
    if (!drawing.inFrames)
        return drawing.line("diag cksum",
                            {drawing.number(type), drawing.number(offset), drawing.number(length)});
    return Request::ofFrame(std::string{'D', 9, asByte(type)} + bigEndian32(offset) +
                            bigEndian32(length));
}

namespace {

Request drawTransfer(Drawing& drawing, const MediumPlace& place) {
    Dice& dice = drawing.dice;
    const std::uint32_t count = drawing.edgeOr(dice.below(4), {0, 1, kBlocks, 0xFFFFFFFF});
    const std::uint32_t size = count < 4 ? count * kBlockSize : 0;
    const std::uint32_t first = drawing.edgeOr(
        dice.below(kBlocks), {0, 1, kBlocks - 1, kBlocks - 2, kBlocks, 0x7FFFFFFF, 0xFFFFFFFF});
    const std::uint32_t inside = windowOf(drawing.part) + dice.below(kWindowSize - size + 1);
    std::uint32_t offset = inside;
    if (dice.oneIn(8))
        offset = dice.oneOf(
            std::vector<std::uint32_t>{kScratchSize, kScratchSize + 1, 0x80000000, 0xFFFFFFFF});
    if (drawing.isAlone && dice.oneIn(8))
        offset = dice.oneOf(std::vector<std::uint32_t>{0, kScratchSize - 1, kScratchSize - kBlockSize,
                                                       kScratchSize - kBlockSize + 1});
    const bool writes = dice.oneIn(2);
    if (!drawing.inFrames)
        return drawing.line(writes ? "blockdev write" : "blockdev read",
                            {drawing.number(place.type), drawing.number(place.id), drawing.number(first),
                             drawing.number(count), drawing.number(offset)});
    return Request::ofFrame(
        std::string{'m', asByte(place.type), asByte(place.id), writes ? '\4' : '\3'} +
        bigEndian32(first) + bigEndian32(count) + bigEndian32(offset));
}

} // namespace

Request drawBlock(Drawing& drawing) {
    Dice& dice = drawing.dice;
    const MediumPlace& own = kMedia[static_cast<std::size_t>(drawing.part)];
    std::uint32_t type = own.type, id = own.id;
    if (!dice.oneIn(4))
        return drawTransfer(drawing, own);
    if (dice.oneIn(4)) {
        type = dice.oneOf(std::vector<std::uint32_t>{0, 175, 176, 177, 178, 179, 180, 181, 255});
        // From here on nobody has any.
        id = dice.between(2, 255);
    }
    const bool opens = !dice.oneIn(4);
    if (!drawing.inFrames)
        return drawing.line(
            std::string(opens ? "blockdev open" : "blockdev close") + (dice.oneIn(4) ? "ing" : ""),
            {drawing.number(type), drawing.number(id)});
    return Request::ofFrame({'m', asByte(type), asByte(id), opens ? '\1' : '\2'});
}
