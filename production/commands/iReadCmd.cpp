#include "commands/iReadCmd.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "commands/I2CAccess.h"
#include "commands/RequestSize.h"
#include "commands/SharedTexts.h"
#include "core/TokenNumber.h"
#include "core/TokenText.h"
#include "runtime/OnlyObject.h"
#include "wire/BigEndian.h"

namespace {

using I2CAccess::OpenFailure;

constexpr int kAttributes = 255;
constexpr int kMostBytes = 247;
constexpr int kReadHeader = 5;
constexpr unsigned kHighestByte = 0xFF;

constexpr RequestSize kReadRequest = {kReadHeader, kNoLimit, "Expected at Least 5 Bytes, received: %d"};
constexpr RequestSize kAttributeRequest = {5, 5, "Expect a Command Length of 5 but get %d"};

constexpr char kOverflow[] = "Overflow of allowed Range of Bytes to Read [1,%d], should Read: %d";
constexpr char kAtLeastFour[] = "Expected at Least 4 Parameter, received: %d";
constexpr char kNoData[] = "Expected Data to write";
constexpr char kTooMuchData[] = "Number of Bytes to write first must be in Range [0,%d], received: %d";
constexpr char kInvalidSlave[] = "Slave address %d is invalid";
constexpr char kNoValue[] = "Attribute Value for AttributeId %d is missing";

Answer checkCount(int count) {
    if (count >= 1 && count <= kMostBytes)
        return nullptr;
    return genericError(kOverflow, kMostBytes, count);
}

Answer invalidSlave(int address) {
    return genericError(kInvalidSlave, address);
}

} // namespace

System::Mutex iReadCmd::s_singleton_mutex(System::Mutex::Normal);

iReadCmd* iReadCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new iReadCmd; });
}

iReadCmd::iReadCmd() : AbstractCmd('i', "i2c", true) {}

Answer iReadCmd::run(const std::vector<unsigned char>* request) {
    return tavrin_getCommand(request) == kAttributes ? getAttributeClassic(request)
                                                     : readBusClassic(request);
}

Answer iReadCmd::run(const std::vector<std::vector<char>>& tokens) {
    struct SubCommand {
        const char* word;
        RequestSize tokens;
        Answer (iReadCmd::*run)(const std::vector<std::vector<char>>& tokens);
    };
    static constexpr SubCommand kSubCommands[] = {
        {"read", {5, kNoLimit, kAtLeastFour}, &iReadCmd::readBus},
        {"getattributes", {4, 4, "Expected 3 Parameter, received: %d"}, &iReadCmd::getAttribute},
        {"setattributes", {5, 5, kAtLeastFour}, &iReadCmd::setAttribute},
        {"write", {5, 5, kAtLeastFour}, &iReadCmd::writeBus},
    };
    if (tokens.size() < 2)
        return genericError(SharedTexts::kNoSubCommand);
    const std::string word = tokenText(tokens[1]);
    for (const SubCommand& subCommand : kSubCommands) {
        if (word != subCommand.word)
            continue;
        if (Answer refusal = checkTokens(subCommand.tokens, tokens))
            return refusal;
        return (this->*subCommand.run)(tokens);
    }
    return genericError(SharedTexts::kUnknownSubCommand, word.c_str());
}

Answer iReadCmd::readBus(unsigned char bus, unsigned char count, unsigned char address, bool writeFirst,
                         const void* data, unsigned char dataLength, std::vector<unsigned char>* out) {
    if (Answer refusal = checkCount(count))
        return refusal;
    auto [i2c, refusal] = I2CAccess::openBus(bus, OpenFailure::CodeOnly);
    if (refusal)
        return std::move(refusal);
    return I2CAccess::outcome(writeFirst ? i2c->transfer(address, data, dataLength, out->data(), count)
                                         : i2c->read(address, out->data(), count));
}

Answer iReadCmd::getAttribute(unsigned char bus, unsigned char attribute,
                              std::vector<unsigned char>* out) {
    auto [i2c, refusal] = I2CAccess::openBus(bus, OpenFailure::CodeOnly);
    if (refusal)
        return std::move(refusal);
    if (attribute == I2CAccess::StopCondition) {
        out->assign(1, i2c->isStopBitEnabled() ? 1 : 0);
        return success();
    }
    if (attribute != I2CAccess::BusSpeed)
        return I2CAccess::unknownAttribute(attribute);
    unsigned speed = 0;
    if (const DeviceResult result = i2c->getBusSpeed(speed); result.failed())
        return I2CAccess::outcome(result);
    out->resize(sizeof(std::uint16_t));
    putBigEndian16(*out, 0, static_cast<std::uint16_t>(speed / I2CAccess::kHertzPerKiloHertz));
    return success();
}

Answer iReadCmd::readBusClassic(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (Answer refusal = checkLength(kReadRequest, length))
        return refusal;
    const unsigned char count = (*request)[3];
    if (Answer refusal = checkCount(count))
        return refusal;
    std::vector<unsigned char> bytes(count);
    return tavrin_answer(
        request,
        readBus((*request)[2], count, (*request)[4], length > kReadHeader, request->data() + kReadHeader,
                static_cast<unsigned char>(length - kReadHeader), &bytes),
        bytes);
}

Answer iReadCmd::getAttributeClassic(const std::vector<unsigned char>* request) {
    if (Answer refusal = checkLength(kAttributeRequest, tavrin_getRequestLen(request)))
        return refusal;
    std::vector<unsigned char> value;
    return tavrin_answer(request, getAttribute((*request)[3], (*request)[4], &value), value);
}

Answer iReadCmd::readBus(const std::vector<std::vector<char>>& tokens) {
    constexpr std::size_t kTokensWithData = 6;
    constexpr std::size_t kMostFirst = 255;
    const int count = ascii_getInt(tokens[3]);
    if (Answer refusal = checkCount(count))
        return refusal;
    const int bus = ascii_getInt(tokens[2]);
    if (Answer refusal = I2CAccess::openBus(bus, OpenFailure::CodeOnly).refusal)
        return refusal;
    const auto address = tokenNumberUpTo(tokens[4], kHighestByte);
    if (!address)
        return invalidSlave(ascii_getInt(tokens[4]));
    const bool writeFirst = tokens.size() == kTokensWithData;
    const std::vector<char> none;
    const std::vector<char>& data = writeFirst ? tokens[5] : none;
    if (data.size() > kMostFirst)
        return genericError(kTooMuchData, static_cast<int>(kMostFirst), static_cast<int>(data.size()));
    std::vector<unsigned char> bytes(static_cast<std::size_t>(count));
    return ascii_answer(readBus(static_cast<unsigned char>(bus), static_cast<unsigned char>(count),
                                static_cast<unsigned char>(*address), writeFirst, data.data(),
                                static_cast<unsigned char>(data.size()), &bytes),
                        [&] { return ascii_buildHexString(bytes, true); });
}

Answer iReadCmd::getAttribute(const std::vector<std::vector<char>>& tokens) {
    const int bus = ascii_getInt(tokens[2]);
    if (Answer refusal = I2CAccess::openBus(bus, OpenFailure::CodeOnly).refusal)
        return refusal;
    const auto attribute = tokenNumberUpTo(tokens[3], kHighestByte);
    if (!attribute)
        return I2CAccess::unknownAttribute(ascii_getInt(tokens[3]));
    std::vector<unsigned char> value;
    return ascii_answer(
        getAttribute(static_cast<unsigned char>(bus), static_cast<unsigned char>(*attribute), &value),
        [&] { return ascii_buildHexString(value, true); });
}

Answer iReadCmd::setAttribute(const std::vector<std::vector<char>>& tokens) {
    auto [i2c, refusal] = I2CAccess::openBus(ascii_getInt(tokens[2]), OpenFailure::MessageAndCode);
    if (refusal)
        return std::move(refusal);
    std::vector<unsigned char> value = ascii_buildHexVector(tokenText(tokens[4]));
    const int attribute = ascii_getInt(tokens[3]);
    switch (attribute) {
        case I2CAccess::StopCondition:
            if (value.empty())
                return genericError(kNoValue, attribute);
            return successIn<ProcessResponseAscii>(I2CAccess::setStopCondition(*i2c, value[0]));
        case I2CAccess::BusSpeed:
            // With zeros for what it lacks it is no speed that there is.
            value.resize(sizeof(std::uint16_t));
            return successIn<ProcessResponseAscii>(
                I2CAccess::setBusSpeed(*i2c, bigEndian16(value, 0), I2CAccess::kBusError));
        default:
            return I2CAccess::unknownAttribute(attribute);
    }
}

Answer iReadCmd::writeBus(const std::vector<std::vector<char>>& tokens) {
    auto [i2c, refusal] = I2CAccess::openBus(ascii_getInt(tokens[2]), OpenFailure::MessageAndCode);
    if (refusal)
        return std::move(refusal);
    const auto address = tokenNumberUpTo(tokens[3], kHighestByte);
    if (!address)
        return invalidSlave(ascii_getInt(tokens[3]));
    const std::vector<char>& data = tokens[4];
    // The one refusal that is given as an exception; the Handler makes it the generic error.
    if (data.empty())
        throw std::out_of_range(kNoData);
    return successIn<ProcessResponseAscii>(
        I2CAccess::outcome(i2c->write(*address, data.data(), static_cast<unsigned>(data.size()))));
}
