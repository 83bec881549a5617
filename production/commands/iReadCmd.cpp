#include "commands/iReadCmd.h"

#include <memory>
#include <stdexcept>
#include <string>

#include "commands/I2CAccess.h"
#include "core/ProcessResponseAscii.h"
#include "core/TokenNumber.h"
#include "core/TokenText.h"
#include "wire/BigEndian.h"

namespace {

using I2CAccess::OpenFailure;

constexpr int kAttributes = 255;
constexpr int kMostBytes = 247;
constexpr int kReadHeader = 5;
constexpr int kAttributeLength = 5;
constexpr unsigned kHighestByte = 0xFF;

constexpr std::size_t kFewestReadTokens = 5;
constexpr std::size_t kReadTokensWithData = 6;
constexpr std::size_t kMostFirst = 255;
constexpr std::size_t kGetTokens = 4;
constexpr std::size_t kSetTokens = 5;
constexpr std::size_t kWriteTokens = 5;

constexpr char kNoSubCommand[] = "Expected a subcommand!";
constexpr char kUnknownSubCommand[] = "unknown subcommand '%s'";
constexpr char kOverflow[] = "Overflow of allowed Range of Bytes to Read [1,%d], should Read: %d";
constexpr char kTooShort[] = "Expected at Least 5 Bytes, received: %d";
constexpr char kWrongLength[] = "Expect a Command Length of 5 but get %d";
constexpr char kAtLeastFour[] = "Expected at Least 4 Parameter, received: %d";
constexpr char kExactlyThree[] = "Expected 3 Parameter, received: %d";
constexpr char kNoData[] = "Expected Data to write";
constexpr char kTooMuchData[] = "Number of Bytes to write first must be in Range [0,%d], received: %d";
constexpr char kInvalidSlave[] = "Slave address %d is invalid";
constexpr char kNoValue[] = "Attribute Value for AttributeId %d is missing";

ProcessResponse* checkCount(int count) {
    if (count >= 1 && count <= kMostBytes)
        return nullptr;
    return new ProcessResponse(ProcessResponse::kGenericError, kOverflow, kMostBytes, count);
}

ProcessResponse* wrongTokenCount(const char* format, const std::vector<std::vector<char>>& tokens) {
    return new ProcessResponse(ProcessResponse::kGenericError, format,
                               static_cast<int>(tokens.size()) - 1);
}

ProcessResponse* invalidSlave(int address) {
    return new ProcessResponse(ProcessResponse::kGenericError, kInvalidSlave, address);
}

} // namespace

System::Mutex iReadCmd::s_singleton_mutex(System::Mutex::Normal);

iReadCmd* iReadCmd::getInstance() {
    const System::Lock lock(s_singleton_mutex);
    static iReadCmd* const instance = new iReadCmd;
    return instance;
}

iReadCmd::iReadCmd() : AbstractCmd('i', "i2c", true) {}

ProcessResponse* iReadCmd::process(std::vector<unsigned char>* request) {
    return tavrin_getCommand(request) == kAttributes ? getAttributeClassic(request)
                                                     : readBusClassic(request);
}

ProcessResponse* iReadCmd::process(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < 2)
        return new ProcessResponse(ProcessResponse::kGenericError, kNoSubCommand);
    const std::string subCommand = tokenText(tokens[1]);
    if (subCommand == "read")
        return readBus(tokens);
    if (subCommand == "getattributes")
        return getAttribute(tokens);
    if (subCommand == "setattributes")
        return setAttribute(tokens);
    if (subCommand == "write")
        return writeBus(tokens);
    return new ProcessResponse(ProcessResponse::kGenericError, kUnknownSubCommand, subCommand.c_str());
}

ProcessResponse* iReadCmd::readBus(unsigned char bus, unsigned char count, unsigned char address,
                                   bool writeFirst, const void* data, unsigned char dataLength,
                                   std::vector<unsigned char>* out) {
    if (ProcessResponse* refusal = checkCount(count))
        return refusal;
    std::unique_ptr<ProcessResponse> refusal;
    I2c* i2c = I2CAccess::openBus(bus, OpenFailure::CodeOnly, refusal);
    if (i2c == nullptr)
        return refusal.release();
    return I2CAccess::outcome(writeFirst ? i2c->transfer(address, data, dataLength, out->data(), count)
                                         : i2c->read(address, out->data(), count));
}

ProcessResponse* iReadCmd::getAttribute(unsigned char bus, unsigned char attribute,
                                        std::vector<unsigned char>* out) {
    std::unique_ptr<ProcessResponse> refusal;
    I2c* i2c = I2CAccess::openBus(bus, OpenFailure::CodeOnly, refusal);
    if (i2c == nullptr)
        return refusal.release();
    if (attribute == I2CAccess::StopCondition) {
        out->assign(1, i2c->isStopBitEnabled() ? 1 : 0);
        return new ProcessResponse(ProcessResponse::kSuccess);
    }
    if (attribute != I2CAccess::BusSpeed)
        return I2CAccess::unknownAttribute(attribute);
    constexpr unsigned kHertzPerKiloHertz = 1000;
    unsigned speed = 0;
    if (const DeviceResult result = i2c->getBusSpeed(speed); result.failed())
        return I2CAccess::outcome(result);
    out->resize(sizeof(std::uint16_t));
    putBigEndian16(*out, 0, static_cast<std::uint16_t>(speed / kHertzPerKiloHertz));
    return new ProcessResponse(ProcessResponse::kSuccess);
}

ProcessResponse* iReadCmd::readBusClassic(std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length < kReadHeader)
        return new ProcessResponse(ProcessResponse::kGenericError, kTooShort, length);
    const unsigned char count = (*request)[3];
    if (ProcessResponse* refusal = checkCount(count))
        return refusal;
    std::vector<unsigned char> bytes(count);
    ProcessResponse* result =
        readBus((*request)[2], count, (*request)[4], length > kReadHeader, request->data() + kReadHeader,
                static_cast<unsigned char>(length - kReadHeader), &bytes);
    return tavrin_answer(request, result, bytes);
}

ProcessResponse* iReadCmd::getAttributeClassic(std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length != kAttributeLength)
        return new ProcessResponse(ProcessResponse::kGenericError, kWrongLength, length);
    std::vector<unsigned char> value;
    ProcessResponse* result = getAttribute((*request)[3], (*request)[4], &value);
    return tavrin_answer(request, result, value);
}

ProcessResponse* iReadCmd::readBus(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < kFewestReadTokens)
        return wrongTokenCount(kAtLeastFour, tokens);
    const int count = ascii_getInt(tokens[3]);
    if (ProcessResponse* refusal = checkCount(count))
        return refusal;
    const int bus = ascii_getInt(tokens[2]);
    std::unique_ptr<ProcessResponse> unopened;
    if (I2CAccess::openBus(bus, OpenFailure::CodeOnly, unopened) == nullptr)
        return unopened.release();
    const auto address = tokenNumberUpTo(tokens[4], kHighestByte);
    if (!address)
        return invalidSlave(ascii_getInt(tokens[4]));
    const bool writeFirst = tokens.size() == kReadTokensWithData;
    const std::vector<char> none;
    const std::vector<char>& data = writeFirst ? tokens[5] : none;
    if (data.size() > kMostFirst)
        return new ProcessResponse(ProcessResponse::kGenericError, kTooMuchData,
                                   static_cast<int>(kMostFirst), static_cast<int>(data.size()));
    std::vector<unsigned char> bytes(static_cast<std::size_t>(count));
    ProcessResponse* result = readBus(static_cast<unsigned char>(bus), static_cast<unsigned char>(count),
                                      static_cast<unsigned char>(*address), writeFirst, data.data(),
                                      static_cast<unsigned char>(data.size()), &bytes);
    return ascii_answer(result, ascii_buildHexString(bytes, true));
}

ProcessResponse* iReadCmd::getAttribute(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kGetTokens)
        return wrongTokenCount(kExactlyThree, tokens);
    const int bus = ascii_getInt(tokens[2]);
    std::unique_ptr<ProcessResponse> unopened;
    if (I2CAccess::openBus(bus, OpenFailure::CodeOnly, unopened) == nullptr)
        return unopened.release();
    const auto attribute = tokenNumberUpTo(tokens[3], kHighestByte);
    if (!attribute)
        return I2CAccess::unknownAttribute(ascii_getInt(tokens[3]));
    std::vector<unsigned char> value;
    ProcessResponse* result =
        getAttribute(static_cast<unsigned char>(bus), static_cast<unsigned char>(*attribute), &value);
    return ascii_answer(result, ascii_buildHexString(value, true));
}

ProcessResponse* iReadCmd::setAttribute(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kSetTokens)
        return wrongTokenCount(kAtLeastFour, tokens);
    std::unique_ptr<ProcessResponse> refusal;
    I2c* i2c = I2CAccess::openBus(ascii_getInt(tokens[2]), OpenFailure::MessageAndCode, refusal);
    if (i2c == nullptr)
        return refusal.release();
    std::vector<unsigned char> value = ascii_buildHexVector(tokenText(tokens[4]));
    const int attribute = ascii_getInt(tokens[3]);
    switch (attribute) {
        case I2CAccess::StopCondition:
            if (value.empty())
                return new ProcessResponse(ProcessResponse::kGenericError, kNoValue, attribute);
            refusal.reset(I2CAccess::setStopCondition(*i2c, value[0]));
            break;
        case I2CAccess::BusSpeed:
            // With zeros for what it lacks it is no speed that there is.
            value.resize(sizeof(std::uint16_t));
            refusal.reset(I2CAccess::setBusSpeed(*i2c, bigEndian16(value, 0), I2CAccess::kBusError));
            break;
        default:
            return I2CAccess::unknownAttribute(attribute);
    }
    return refusal ? refusal.release() : new ProcessResponseAscii(ProcessResponse::kSuccess, "");
}

ProcessResponse* iReadCmd::writeBus(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kWriteTokens)
        return wrongTokenCount(kAtLeastFour, tokens);
    std::unique_ptr<ProcessResponse> refusal;
    I2c* i2c = I2CAccess::openBus(ascii_getInt(tokens[2]), OpenFailure::MessageAndCode, refusal);
    if (i2c == nullptr)
        return refusal.release();
    const auto address = tokenNumberUpTo(tokens[3], kHighestByte);
    if (!address)
        return invalidSlave(ascii_getInt(tokens[3]));
    const std::vector<char>& data = tokens[4];
    // The one refusal that is given as an exception; the Handler makes it the generic error.
    if (data.empty())
        throw std::out_of_range(kNoData);
    const DeviceResult result = i2c->write(*address, data.data(), static_cast<unsigned>(data.size()));
    if (result.failed())
        return I2CAccess::outcome(result);
    return new ProcessResponseAscii(ProcessResponse::kSuccess, "");
}
