#include "model/ScratchModel.h"

#include <numeric>
#include <optional>

#include "model/Notation.h"

namespace {

constexpr std::uint32_t kMostBytes = 244;
constexpr std::uint32_t kOutOfBounds = 0x08000100;
constexpr std::uint32_t kMalformed = 0x08001000;
constexpr std::uint32_t kWrongSum = 0x08000400;

constexpr std::uint32_t kAddressError = 0x0B000001;
constexpr std::uint32_t kSizeError = 0x0B000002;
constexpr std::uint32_t kShortestChecksum = 4;

constexpr char kTooManyRead[] = "Number of Accessesout of Bounds [(%u*%u => %u) > 244]";
constexpr char kTooManyInFrame[] = "Number of Accesses outof Bounds [(%u*%u => %u) > 244]";
constexpr char kTooManyInLine[] = "Number of Accesses out of Bounds [(%u*%u => %u) > 244]";

std::uint32_t sumOf(const std::string& bytes) {
    return std::accumulate(
               bytes.begin(), bytes.end(), 0U,
               [](std::uint32_t sum, char byte) { return sum + static_cast<unsigned char>(byte); }) &
           0xFF;
}

std::string oneByte(std::uint32_t number) {
    return std::string(1, asByte(number));
}

/// Nothing when the access may be made.
template <typename Access>
std::optional<Answer> refused(const Access& access, const char* tooMany) {
    if (access.total() > kMostBytes)
        return Answer::refusal(kOutOfBounds,
                               formatted(tooMany, access.count, access.width, access.total()));
    if (access.address % access.width != 0)
        return Answer::refusal(kMalformed, "Alignment Error for Start Address");
    if (std::uint64_t{access.total()} + access.address >= kScratchSize)
        return Answer::refusal(kOutOfBounds, "Accessing Memory out of Limits");
    return std::nullopt;
}

Answer wrongLength() {
    return Answer::refusal(kMalformed, "Invalid Command Length");
}

} // namespace

Answer MemoryModel::answer(const Request& request) {
    return request.isFrame() ? answerFrame(request.wholeFrame()) : answerLine(Words(request.words));
}

Answer MemoryModel::answerLine(const Words& words) {
    const auto count = static_cast<unsigned>(words.count());
    if (count < 5)
        return Answer::failure(formatted(
            "Command length error, command must contain at least 5 fields, received fields: %u", count));
    const std::string operation = words.text(1);
    const std::string width = words.text(2);
    const bool writes = operation == "write";
    const bool isChecked = width == "8bitcrc";
    if (writes && count < 6)
        return Answer::failure(formatted(
            "Command length error,write commands must contain at least 6 fields, received fields:%u",
            count));
    if (writes && isChecked && count < 7)
        return Answer::failure(
            formatted("Command length error, write 8bitcrc commands  must contain at "
                      "least 7 fields,received fields: %u",
                      count));
    const std::uint32_t bytes = width == "32bit" ? 4 : width == "16bit" ? 2 : 1;
    const bool isWidth = bytes != 1 || isChecked || width == "8bit";
    if (!isWidth || (!writes && operation != "read"))
        return Answer::failure("unknown command combination param1:'" + operation +
                               "', param2: " + width);
    const Access access{bytes, words.modulo256(3), words.bits(4), isChecked};
    return writes ? writeLine(access, words) : readLine(access);
}

Answer MemoryModel::readLine(const Access& access) const {
    if (auto refusal = refused(access, kTooManyRead))
        return *refusal;
    const std::string data = m_scratch.read(access.address, access.total());
    return Answer::success(hexText(access.isChecked ? oneByte(sumOf(data)) + data : data));
}

Answer MemoryModel::writeLine(const Access& access, const Words& words) {
    constexpr std::size_t kMostData = 255;
    if (auto refusal = refused(access, kTooManyInLine))
        return *refusal;
    const std::string& data = words.bytes(5);
    if (data.size() < access.total() || data.size() > kMostData)
        return Answer::failure(formatted("Number of Data Bytes must be in Range [%u,255], received: %zu",
                                         access.total(), data.size()));
    const std::string written = data.substr(0, access.total());
    m_scratch.write(access.address, written);
    if (access.isChecked && words.bits(6) != sumOf(written))
        return Answer::failure(formatted("Invalid checksum in write request: 0x%02X ", words.bits(6)));
    return Answer::success("ok");
}

Answer MemoryModel::answerFrame(const std::string& frame) {
    constexpr std::uint32_t kChecked = 6, kCodes = 8;
    constexpr std::uint32_t kWidths[] = {1, 2, 4, 1}; // of two codes each, the one that reads first
    const std::uint32_t code = frame.size() < 3 ? kCodes : byteAt(frame, 2);
    if (code >= kCodes)
        return Answer::refusal(kMalformed, "Command not supported");
    const bool isChecked = code >= kChecked;
    if (code % 2 != 0)
        return writeFrame(frame, kWidths[code / 2], isChecked);
    if (frame.size() != (isChecked ? 10U : 8U))
        return wrongLength();
    return readFrame({kWidths[code / 2], byteAt(frame, 3), numberAt(frame, 4), isChecked}, frame);
}

Answer MemoryModel::readFrame(const Access& access, const std::string& frame) const {
    if (auto refusal = refused(access, kTooManyRead))
        return *refusal;
    const std::string data = m_scratch.read(access.address, access.total());
    return Answer::success(access.isChecked ? frame.substr(8) + oneByte(sumOf(data)) + data : data);
}

Answer MemoryModel::writeFrame(const std::string& frame, std::uint32_t width, bool isChecked) {
    const std::size_t header = isChecked ? 11 : 8;
    if (frame.size() < header)
        return wrongLength();
    const Access access{width, byteAt(frame, 3), numberAt(frame, 4), isChecked};
    if (auto refusal = refused(access, kTooManyInFrame))
        return *refusal;
    if (header + access.total() > frame.size())
        return Answer::refusal(kMalformed,
                               formatted("Accesslength: %u + Commandlength: %zu > Commandlength: %zu",
                                         access.total(), header, frame.size()));
    const std::string data = frame.substr(header, access.total());
    m_scratch.write(access.address, data);
    if (!isChecked)
        return Answer::success("");
    // What was sent is in the buffer all the same.
    return byteAt(frame, 10) == sumOf(data) ? Answer::success({0, 0, asByte(sumOf(data))})
                                            : Answer::refusal(kWrongSum, "");
}

Answer ChecksumModel::checksum(std::uint32_t type, std::uint32_t offset, std::uint32_t length) const {
    if (type == 1)
        return Answer::failure("segmented memory type (1) not implemented");
    if (type != 0)
        return Answer::failure(formatted("unknown memory type %u", type));
    if (offset >= kScratchSize)
        return Answer::refusal(kAddressError, "memory address too large");
    if (length >= kScratchSize)
        return Answer::refusal(kSizeError, "size parameter too large");
    if (offset + length >= kScratchSize)
        return Answer::refusal(kSizeError, "offset + size exceed allocated memory size");
    if (length < kShortestChecksum)
        return Answer::refusal(kSizeError, "length paramater too small");
    return Answer::success(checksumOf(m_scratch.read(offset, length)));
}

Answer ChecksumModel::answer(const Request& request) {
    if (request.isFrame()) {
        const std::string frame = request.wholeFrame();
        if (frame.size() < 3 || byteAt(frame, 2) != 9)
            return Answer::failure("Unexpected byte at position D2 of 'D' command, '9' expected");
        if (frame.size() != 12)
            return Answer::failure("Invalid Command Length");
        return checksum(byteAt(frame, 3), numberAt(frame, 4), numberAt(frame, 8));
    }
    const Words words(request.words);
    if (words.count() != 5)
        return Answer::failure("Invalid Command Length");
    if (!words.begins(1, "cksum"))
        return Answer::failure("Invalid subcommand");
    Answer answer = checksum(words.modulo256(2), words.bits(3), words.bits(4));
    if (answer.succeeds())
        answer.content = "cksum " + base64Text(answer.content);
    return answer;
}
