#include "requests/ScratchRequests.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "requests/Notation.h"

namespace {

constexpr std::uint32_t kMostBytes = 244;
constexpr std::uint32_t kOutOfBounds = 0x08000100;
constexpr std::uint32_t kMalformed = 0x08001000;
constexpr std::uint32_t kWrongSum = 0x08000400;

constexpr std::uint32_t kAddressError = 0x0B000001;
constexpr std::uint32_t kSizeError = 0x0B000002;
constexpr std::uint32_t kShortestChecksum = 4;
constexpr std::uint32_t kLongestChecksum = 4096;
// Nobody writes to the upper half of the buffer.
constexpr std::uint32_t kZerosBegin = kScratchSize / 2;

constexpr std::uint32_t kMostBlocks = 4;

std::uint32_t sumOf(std::string_view bytes) {
    return std::accumulate(
               bytes.begin(), bytes.end(), 0U,
               [](std::uint32_t sum, char byte) { return sum + static_cast<unsigned char>(byte); }) &
           0xFF;
}

Exchange checksumRequest(Dice& dice, std::uint32_t type, std::uint32_t offset, std::uint32_t length) {
    const auto number = [&dice](std::uint32_t value) { return " " + anyNumber(dice, value); };
    return {"diag cksum" + number(type) + number(offset) + number(length),
            {},
            std::string{'D', 9, asByte(type)} + bigEndian32(offset) + bigEndian32(length),
            {}};
}

void expectChecksum(Exchange& exchange, const std::string& checksum) {
    exchange.lineExpected = Expected::exactly("cksum " + base64Text(checksum));
    exchange.frameExpected = Expected::exactly(checksum);
}

} // namespace

Exchange ScratchRequests::memory() {
    constexpr Access kAccesses[] = {
        {"8bit", 1, 0, false}, {"16bit", 2, 2, false}, {"32bit", 4, 4, false}, {"8bitcrc", 1, 6, true}};
    const Access& access = m_dice.oneOf(kAccesses);
    if (m_dice.oneIn(4))
        return memoryRefused(access);
    return m_dice.oneIn(2) ? memoryRead(access) : memoryWrite(access);
}

ScratchRequests::Place ScratchRequests::placeFor(const Access& access) {
    const std::uint32_t count = m_dice.between(0, kMostBytes / access.width);
    const std::uint32_t room = (Window::kSize - count * access.width) / access.width;
    return {count, m_window.begin() + m_dice.below(room) * access.width};
}

ScratchRequests::Place ScratchRequests::placeOutOfRange(const Access& access, std::uint32_t& code) {
    const Place place = placeFor(access);
    const std::uint32_t end = kScratchSize - place.count * access.width;
    switch (m_dice.below(3)) {
        case 0:
            code = kOutOfBounds;
            return {m_dice.between(kMostBytes / access.width + 1, 255), place.address};
        case 1:
            code = kOutOfBounds;
            return {place.count, m_dice.oneIn(2) ? end : m_dice.between(end + 4, 0xFFFFFFFF) / 4 * 4};
        default:
            // Every address suits single bytes.
            if (access.width == 1) {
                code = kOutOfBounds;
                return {255, place.address};
            }
            code = kMalformed;
            return {place.count, place.address + 1};
    }
}

Exchange ScratchRequests::memoryRead(const Access& access) {
    const Place place = placeFor(access);
    const std::string data = m_window.read(place.address, std::size_t{place.count} * access.width);
    const std::string tag = access.isChecked ? m_dice.bytes(2) : "";
    const std::string sum(access.isChecked ? 1 : 0, asByte(sumOf(data)));
    return {"memory read " + std::string(access.keyword) + " " + anyNumber(m_dice, place.count) + " " +
                anyNumber(m_dice, place.address),
            Expected::exactly(hexText(sum + data)),
            std::string{'t', asByte(access.readCode), asByte(place.count)} + bigEndian32(place.address) +
                tag,
            Expected::exactly(tag + sum + data)};
}

Exchange ScratchRequests::memoryWrite(const Access& access) {
    const Place place = placeFor(access);
    const std::string data = m_dice.bytes(std::size_t{place.count} * access.width);
    m_window.write(place.address, data);
    const bool wrongSum = access.isChecked && m_dice.oneIn(8);
    const std::uint32_t sum = wrongSum ? sumOf(data) ^ 0x55 : sumOf(data);
    Exchange exchange{
        "memory write " + std::string(access.keyword) + " " + anyNumber(m_dice, place.count) + " " +
            anyNumber(m_dice, place.address) + " " + anyData(m_dice, data.empty() ? "x" : data),
        Expected::exactly("ok"),
        std::string{'t', asByte(access.readCode + 1), asByte(place.count)} + bigEndian32(place.address),
        Expected::exactly("")};
    if (access.isChecked) {
        exchange.line += " " + anyNumber(m_dice, sum);
        exchange.frame += m_dice.bytes(2) + asByte(sum);
        exchange.frameExpected = Expected::exactly(std::string{0, 0, asByte(sum)});
    }
    exchange.frame += data;
    // What was sent is in the buffer all the same.
    if (wrongSum) {
        exchange.lineExpected = Expected::refusal(kGenericError);
        exchange.frameExpected = Expected::refusal(kWrongSum);
    }
    return exchange;
}

Exchange ScratchRequests::memoryRefused(const Access& access) {
    std::uint32_t code = 0;
    const Place place = placeOutOfRange(access, code);
    const bool writing = m_dice.oneIn(2);
    const std::string data = m_dice.bytes(std::min(place.count * access.width, kMostBytes));
    Exchange exchange{
        "memory " + std::string(writing ? "write " : "read ") + access.keyword + " " +
            anyNumber(m_dice, place.count) + " " + anyNumber(m_dice, place.address),
        Expected::refusal(code),
        std::string{'t', asByte(access.readCode + (writing ? 1U : 0U)), asByte(place.count)} +
            bigEndian32(place.address),
        Expected::refusal(code)};
    if (access.isChecked)
        exchange.frame += m_dice.bytes(writing ? 3 : 2);
    if (writing) {
        exchange.line += " " + anyData(m_dice, data.empty() ? "x" : data) + " 0";
        exchange.frame += data;
    }
    return exchange;
}

Exchange ScratchRequests::checksum() {
    constexpr std::uint32_t kOneLongIn = 200;
    if (m_dice.oneIn(kOneLongIn))
        return checksumOfZeros();
    if (m_dice.oneIn(3))
        return checksumRefused();
    const std::uint32_t length = m_dice.between(kShortestChecksum, kLongestChecksum);
    const std::uint32_t offset = m_window.begin() + m_dice.below(Window::kSize - length + 1);
    Exchange exchange = checksumRequest(m_dice, 0, offset, length);
    expectChecksum(exchange, checksumOf(m_window.read(offset, length)));
    return exchange;
}

Exchange ScratchRequests::wholeWindow() const {
    Dice plain(0);
    Exchange exchange = checksumRequest(plain, 0, m_window.begin(), Window::kSize);
    expectChecksum(exchange, checksumOf(m_window.read(m_window.begin(), Window::kSize)));
    return exchange;
}

Exchange ScratchRequests::checksumOfZeros() {
    constexpr std::uint32_t kLength = 1024 * 1024;
    static const std::string checksum = checksumOf(std::string(kLength, '\0'));
    const std::uint32_t room = kScratchSize - kZerosBegin - kLength;
    Exchange exchange = checksumRequest(m_dice, 0, kZerosBegin + m_dice.below(room), kLength);
    expectChecksum(exchange, checksum);
    return exchange;
}

Exchange ScratchRequests::checksumRefused() {
    struct Row {
        std::uint32_t type, offset, length, code;
    };
    const std::uint32_t length = m_dice.between(kShortestChecksum, kScratchSize - 1);
    const Row rows[] = {
        {m_dice.between(1, 255), 0, length, kGenericError},
        {0, m_dice.between(kScratchSize, 0xFFFFFFFF), length, kAddressError},
        {0, m_dice.below(kScratchSize), m_dice.between(kScratchSize, 0xFFFFFFFF), kSizeError},
        {0, kScratchSize - length, length, kSizeError},
        {0, m_dice.between(kScratchSize - length, kScratchSize - 1), length, kSizeError},
        {0, m_dice.below(kZerosBegin), m_dice.below(kShortestChecksum), kSizeError},
    };
    const Row& row = m_dice.oneOf(rows);
    Exchange exchange = checksumRequest(m_dice, row.type, row.offset, row.length);
    exchange.lineExpected = Expected::refusal(row.code);
    exchange.frameExpected = exchange.lineExpected;
    return exchange;
}

Exchange ScratchRequests::block() {
    checkWritten();
    const std::uint32_t choice = m_dice.below(10);
    if (choice == 0)
        return noSuchMedium();
    if (choice <= 2)
        return openOrClose(choice == 1 || !m_medium.isOpen);
    const bool writing = choice % 2 == 0;
    if (choice == 3 || choice == 4 || !m_medium.isOpen || (writing && !m_medium.place().writable))
        return transferRefused(writing);
    return transfer(writing);
}

void ScratchRequests::checkWritten() {
    if (m_written.count != 0 &&
        m_medium.content(m_written.firstBlock, m_written.count) != m_written.bytes)
        throw std::runtime_error(std::string(m_medium.place().path) +
                                 " does not hold what was written to it");
    m_written = {};
}

Exchange ScratchRequests::openOrClose(bool opening) {
    m_medium.isOpen = opening;
    const Medium::Place& place = m_medium.place();
    return {"blockdev " + std::string(opening ? "open" : "close") + (m_dice.oneIn(4) ? "ing " : " ") +
                anyNumber(m_dice, place.type) + " " + anyNumber(m_dice, place.id),
            Expected::exactly("ok"),
            {'m', asByte(place.type), asByte(place.id), opening ? '\1' : '\2'},
            Expected::exactly("")};
}

std::uint32_t ScratchRequests::blocksThatFit() const {
    return std::min(kMostBlocks, Window::kSize / m_medium.blockSize());
}

Exchange ScratchRequests::transfer(bool writing) {
    const std::uint32_t count = m_dice.between(0, blocksThatFit());
    const std::uint32_t size = count * m_medium.blockSize();
    // The last block is out of reach.
    const std::uint32_t first = m_dice.below(m_medium.blocks() - count);
    const std::uint32_t offset = m_window.begin() + m_dice.below(Window::kSize - size + 1);
    if (writing)
        m_written = {first, count, m_window.read(offset, size)};
    else
        m_window.write(offset, m_medium.content(first, count));
    const std::string moved = bigEndian32(size);
    return transferOf(writing, first, count, offset, Expected::exactly(base64Text(moved)),
                      Expected::exactly(moved));
}

Exchange ScratchRequests::transferRefused(bool writing) {
    struct Row {
        std::uint32_t first, count, offset;
    };
    const std::uint32_t blocks = m_medium.blocks();
    const std::uint32_t begin = m_window.begin();
    std::vector<Row> rows = {
        {m_dice.between(blocks, 0xFFFFFFFF), 1, begin},
        {blocks - 1, 1, begin},
        {m_dice.below(blocks), blocks, begin},
        {0, m_dice.between(blocks, 0xFFFFFFFF), begin},
        {0, 1, m_dice.between(kScratchSize, 0xFFFFFFFF)},
        {0, 1, m_dice.between(kScratchSize - m_medium.blockSize() + 1, kScratchSize - 1)},
    };
    if (!m_medium.isOpen || (writing && !m_medium.place().writable))
        rows.push_back({0, 1, begin});
    const Row& row = m_dice.oneOf(rows);
    return transferOf(writing, row.first, row.count, row.offset, Expected::refusal(kGenericError),
                      Expected::refusal(kGenericError));
}

Exchange ScratchRequests::transferOf(bool writing, std::uint32_t first, std::uint32_t count,
                                     std::uint32_t offset, const Expected& line, const Expected& frame) {
    const Medium::Place& place = m_medium.place();
    std::string text = writing ? "blockdev write" : "blockdev read";
    for (const std::uint32_t number : {place.type, place.id, first, count, offset})
        text += " " + anyNumber(m_dice, number);
    return {text, line,
            std::string{'m', asByte(place.type), asByte(place.id), writing ? '\4' : '\3'} +
                bigEndian32(first) + bigEndian32(count) + bigEndian32(offset),
            frame};
}

Exchange ScratchRequests::noSuchMedium() {
    struct Row {
        std::uint32_t type, id;
    };
    const Row rows[] = {{176, m_dice.below(256)},      {177, m_dice.below(256)},
                        {178, m_dice.between(1, 255)}, {179, m_dice.between(1, 255)},
                        {180, m_dice.between(2, 255)}, {m_dice.below(176), 0},
                        {m_dice.between(181, 255), 0}};
    const Row& row = m_dice.oneOf(rows);
    return {"blockdev open " + anyNumber(m_dice, row.type) + " " + anyNumber(m_dice, row.id),
            Expected::refusal(kGenericError),
            {'m', asByte(row.type), asByte(row.id), 1},
            Expected::refusal(kGenericError)};
}
