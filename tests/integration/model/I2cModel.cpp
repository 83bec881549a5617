#include "model/I2cModel.h"

#include <cctype>

#include "model/Notation.h"

namespace {

constexpr std::uint32_t kBusError = 0x07000001;
constexpr std::uint32_t kNoSuchBus = 0x07000005;
constexpr std::uint32_t kUnknownAttribute = 0x0700000B;
constexpr std::uint32_t kClockError = 0x0700000D;
constexpr std::uint32_t kAttributes = 255; // in the bus's place

constexpr std::int64_t kMostRead = 247;

std::optional<Answer> noSuchBus(std::int64_t bus) {
    if (bus == 0)
        return std::nullopt;
    return Answer::refusal(kNoSuchBus,
                           formatted("Bus number %lld is invalid", static_cast<long long>(bus)));
}

std::optional<Answer> noSuchCount(std::int64_t count) {
    if (count >= 1 && count <= kMostRead)
        return std::nullopt;
    return Answer::failure(
        formatted("Overflow of allowed Range of Bytes to Read [1,247], should Read: %lld",
                  static_cast<long long>(count)));
}

std::optional<Answer> noSuchSlave(std::int64_t address) {
    if (address >= 0 && address <= 0xFF)
        return std::nullopt;
    return Answer::failure(formatted("Slave address %lld is invalid", static_cast<long long>(address)));
}

Answer unknownAttribute(std::int64_t attribute) {
    return Answer::refusal(kUnknownAttribute,
                           formatted("Attribute ID %lld is unknown", static_cast<long long>(attribute)));
}

/// The bytes of hexadecimal digits among other characters.
std::string bytesOfDigits(const std::string& text) {
    std::string bytes;
    std::string pair;
    for (const char character : text) {
        if (std::isxdigit(static_cast<unsigned char>(character)) == 0)
            continue;
        pair += character;
        if (pair.size() < 2)
            continue;
        bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
        pair.clear();
    }
    return bytes;
}

Answer wrongCount(const char* format, std::size_t count) {
    return Answer::failure(formatted("%s%zu", format, count));
}

Answer inHex(Answer answer) {
    if (answer.succeeds())
        answer.content = hexText(answer.content);
    return answer;
}

} // namespace

Answer I2cModel::answer(const Request& request) {
    return request.isFrame() ? answerFrame(request.wholeFrame()) : answerLine(Words(request.words));
}

Answer I2cModel::read(std::uint32_t address, std::uint32_t count,
                      const std::optional<std::string>& first) {
    const bool isThere = !first || m_chips.write(address, *first);
    const std::optional<std::string> bytes = isThere ? m_chips.read(address, count) : std::nullopt;
    if (bytes)
        return Answer::success(*bytes);
    return Answer::refusal(
        kBusError, first ? "Transfer Error on Device /dev/i2c0: The master send failed, errorcode: 5"
                         : "Read Error on Device /dev/i2c0: bad slave address/ bad bus speed/ "
                           "bus is busy, errorcode: 5");
}

Answer I2cModel::write(std::uint32_t address, const std::string& bytes) {
    if (m_chips.write(address, bytes))
        return Answer::success("");
    return Answer::refusal(kBusError,
                           "Write Error on Device /dev/i2c0: The master send failed, errorcode: 5");
}

Answer I2cModel::attribute(std::int64_t number) const {
    if (number == 0)
        return Answer::success(std::string(1, m_stops ? '\1' : '\0'));
    return number == 1 ? Answer::success(bigEndian16(m_kiloHertz)) : unknownAttribute(number);
}

Answer I2cModel::setStop(std::uint32_t value) {
    if (value > 1)
        return Answer::failure(formatted("Attribute Value %u for AttributeId 0 is unknown", value));
    m_stops = value == 1;
    return Answer::success("");
}

Answer I2cModel::setClock(std::uint32_t kiloHertz) {
    if (kiloHertz != 100 && kiloHertz != 400)
        return Answer::refusal(kClockError, formatted("Clockspeed of %u is not supported", kiloHertz));
    m_kiloHertz = kiloHertz;
    return Answer::success("");
}

Answer I2cModel::answerLine(const Words& words) {
    if (words.count() < 2)
        return Answer::failure("Expected a subcommand!");
    const std::string what = words.text(1);
    if (what == "read")
        return inHex(readLine(words));
    if (what == "getattributes") {
        if (words.count() != 4)
            return wrongCount("Expected 3 Parameter, received: ", words.count() - 1);
        const auto refusal = noSuchBus(words.number(2));
        return refusal ? *refusal : inHex(attribute(words.number(3)));
    }
    if (what != "setattributes" && what != "write")
        return Answer::failure("unknown subcommand '" + what + "'");
    if (words.count() != 5)
        return wrongCount("Expected at Least 4 Parameter, received: ", words.count() - 1);
    if (auto refusal = noSuchBus(words.number(2)))
        return *refusal;
    Answer answer = what == "write" ? writeLine(words) : setAttributeLine(words);
    if (answer.succeeds())
        answer.content = "ok";
    return answer;
}

Answer I2cModel::readLine(const Words& words) {
    constexpr std::size_t kWithData = 6, kMostFirst = 255;
    if (words.count() < kWithData - 1)
        return wrongCount("Expected at Least 4 Parameter, received: ", words.count() - 1);
    const std::int64_t count = words.number(3);
    for (const auto& refusal :
         {noSuchCount(count), noSuchBus(words.number(2)), noSuchSlave(words.number(4))})
        if (refusal)
            return *refusal;
    if (words.count() != kWithData)
        return read(words.bits(4), static_cast<std::uint32_t>(count), std::nullopt);
    if (words.bytes(5).size() > kMostFirst)
        return wrongCount("Number of Bytes to write first must be in Range [0,255], received: ",
                          words.bytes(5).size());
    return read(words.bits(4), static_cast<std::uint32_t>(count), words.bytes(5));
}

Answer I2cModel::writeLine(const Words& words) {
    if (auto refusal = noSuchSlave(words.number(3)))
        return *refusal;
    if (words.bytes(4).empty())
        return Answer::failure("Expected Data to write");
    return write(words.bits(3), words.bytes(4));
}

Answer I2cModel::setAttributeLine(const Words& words) {
    const std::int64_t attribute = words.number(3);
    std::string value = bytesOfDigits(words.text(4));
    if (attribute == 0)
        return value.empty() ? Answer::failure("Attribute Value for AttributeId 0 is missing")
                             : setStop(byteAt(value, 0));
    if (attribute != 1)
        return unknownAttribute(attribute);
    value.resize(std::max<std::size_t>(value.size(), 2));
    return setClock(byteAt(value, 0) << 8 | byteAt(value, 1));
}

Answer I2cModel::answerFrame(const std::string& frame) {
    const bool isAttribute = frame.size() > 2 && byteAt(frame, 2) == kAttributes;
    if (frame[1] == 'I')
        return isAttribute ? setAttributeFrame(frame) : writeFrame(frame);
    if (!isAttribute)
        return readFrame(frame);
    if (frame.size() != 5)
        return wrongCount("Expect a Command Length of 5 but get ", frame.size());
    const auto refusal = noSuchBus(byteAt(frame, 3));
    return refusal ? *refusal : attribute(byteAt(frame, 4));
}

Answer I2cModel::readFrame(const std::string& frame) {
    if (frame.size() < 5)
        return wrongCount("Expected at Least 5 Bytes, received: ", frame.size());
    const std::uint32_t count = byteAt(frame, 3);
    if (auto refusal = noSuchCount(count))
        return *refusal;
    if (auto refusal = noSuchBus(byteAt(frame, 2)))
        return *refusal;
    return read(byteAt(frame, 4), count,
                frame.size() > 5 ? std::optional<std::string>(frame.substr(5)) : std::nullopt);
}

Answer I2cModel::writeFrame(const std::string& frame) {
    if (frame.size() < 5)
        return wrongCount("Expect at least 5 Bytes, received: ", frame.size());
    const std::uint32_t count = byteAt(frame, 3);
    if (count < 1 || count > 251)
        return Answer::failure(
            formatted("Number of to by written Bytes must be in Range [1,250] but is %u", count));
    if (count + 3 >= frame.size())
        return Answer::failure("Bytes to Write is out of Range of received Bytes");
    if (auto refusal = noSuchBus(byteAt(frame, 2)))
        return *refusal;
    // The address is the first of the bytes at the same time.
    return write(byteAt(frame, 4), frame.substr(4, count));
}

Answer I2cModel::setAttributeFrame(const std::string& frame) {
    if (frame.size() < 5)
        return wrongCount("Expect at least 5 Bytes, received: ", frame.size());
    if (auto refusal = noSuchBus(byteAt(frame, 3)))
        return *refusal;
    const std::uint32_t attribute = byteAt(frame, 4);
    if (attribute > 1)
        return unknownAttribute(attribute);
    if (attribute == 1)
        return frame.size() == 7 ? setClock(byteAt(frame, 5) << 8 | byteAt(frame, 6))
                                 : wrongCount("Expect 7 Bytes, received: ", frame.size());
    return frame.size() == 6 ? setStop(byteAt(frame, 5))
                             : wrongCount("Expect at 6 Bytes, received: ", frame.size());
}
