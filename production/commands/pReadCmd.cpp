#include "commands/pReadCmd.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

#include "commands/RequestSize.h"
#include "commands/SharedTexts.h"
#include "core/TokenText.h"
#include "platform/Node.h"
#include "runtime/OnlyObject.h"
#include "wire/BigEndian.h"

namespace {

constexpr int kPortCommand = 0xE3;
constexpr int kHeaderLength = 3;
constexpr unsigned char kReadConfig = 0;
constexpr unsigned char kReadPort = 1;
constexpr std::size_t kMostPorts = 255;

constexpr char kReadWord[] = "read";
constexpr char kAttributesWord[] = "getattributes";
constexpr char kWriteWord[] = "write";
constexpr std::size_t kReadTokens = 3;

constexpr unsigned int kNotImplemented = 1026;
constexpr unsigned int kNotOnThisUnit = 1027;
constexpr unsigned char kLevelBit = 0x04;

constexpr RequestSize kConfigRequest = {4, 4, "Invalid Command Length: Expected a Length of 4, get %d"};
constexpr RequestSize kPortRequest = {5, 5, "Expected at a Command Length of 5, received %d"};
// Of a line it is said in the same words.
constexpr RequestSize kWriteLine = kConfigRequest;

constexpr char kNotSupported[] = "Command is not supported";
constexpr char kTooManyPorts[] = "Internal Error: Number of Ports > 255";
constexpr char kReadNotImplemented[] = "Reading from Port %d is not implemented";
constexpr char kReadAbsent[] = "Port %d does not exist on this Target";
constexpr char kReadFailed[] = "Reading from Port %d results in Error-Code %d";
constexpr char kConfigFailed[] = "Failed to read Port %d: %s, errorcode: %d";
constexpr char kNoPortNumber[] = "Expected a Port Number!";

} // namespace

System::Mutex pReadCmd::s_singleton_mutex(System::Mutex::Normal);

pReadCmd* pReadCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new pReadCmd; });
}

pReadCmd::pReadCmd() : AbstractPCmd('p', "port") {}

Answer pReadCmd::run(const std::vector<unsigned char>* request) {
    std::vector<unsigned char> data;
    return tavrin_answer(request, runBinary(request, &data), data);
}

Answer pReadCmd::runBinary(const std::vector<unsigned char>* request, std::vector<unsigned char>* data) {
    const int length = tavrin_getRequestLen(request);
    if (length <= kHeaderLength || tavrin_getCommand(request) != kPortCommand)
        return genericError(kNotSupported);
    switch ((*request)[3]) {
        case kReadConfig:
            if (Answer refusal = checkLength(kConfigRequest, length))
                return refusal;
            if (ports().size() > kMostPorts)
                return genericError(kTooManyPorts);
            return getConfig(data);
        case kReadPort:
            if (Answer refusal = checkLength(kPortRequest, length))
                return refusal;
            if (Answer refusal = checkRange((*request)[4]))
                return refusal;
            return readPort((*request)[4], data);
        default:
            return genericError(kNotSupported);
    }
}

unsigned int pReadCmd::readPortValue(unsigned char port, char& value) {
    value = '0';
    if (ports()[port].name.empty())
        return kNotImplemented;
    const System::Descriptor node = System::openNode(nodeOf(port).c_str(), O_RDONLY);
    const bool isRead = node && System::readNode(node.get(), &value, 1) >= 0;
    return isRead ? 0 : static_cast<unsigned int>(errno);
}

Answer pReadCmd::readPort(unsigned char port, std::vector<unsigned char>* data) {
    char value = '0';
    const unsigned int error = readPortValue(port, value);
    if (error == kNotImplemented)
        return failure(kNotAvailable, kReadNotImplemented, port);
    if (error == kNotOnThisUnit)
        return failure(kNotAvailable, kReadAbsent, port);
    if (error != 0)
        return failure(kAccessFailed, kReadFailed, port, static_cast<int>(error));
    unsigned char attributes = 0;
    setAttributes(attributes, ports()[port].type, value, true);
    data->push_back(port);
    data->push_back(attributes);
    return success();
}

Answer pReadCmd::getConfig(std::vector<unsigned char>* data) {
    if (data->size() < sizeof(std::uint16_t))
        data->resize(sizeof(std::uint16_t));
    putBigEndian16(*data, 0, static_cast<std::uint16_t>(ports().size()));
    unsigned char pair = 0;
    for (std::size_t at = 0; at < ports().size(); ++at) {
        char value = '0';
        const unsigned int error = readPortValue(static_cast<unsigned char>(at), value);
        if (error != 0 && error != kNotImplemented)
            return failure(kAccessFailed, kConfigFailed, static_cast<int>(at),
                           std::strerror(static_cast<int>(error)), static_cast<int>(error));
        const bool isLow = at % 2 == 0;
        setAttributes(pair, error == 0 ? ports()[at].type : PortInfo::None, value, isLow);
        if (!isLow || at + 1 == ports().size())
            data->push_back(pair);
    }
    return success();
}

void pReadCmd::setAttributes(unsigned char& byte, PortInfo::Type type, char value, bool low) {
    const unsigned int nibble = type | (value == '1' ? kLevelBit : 0U);
    byte = static_cast<unsigned char>(low ? nibble : byte | nibble << 4);
}

Answer pReadCmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < 2)
        return genericError(SharedTexts::kNoSubCommand);
    std::vector<unsigned char> data;
    const auto dataInHex = [this, &data] { return ascii_buildHexString(data, true); };
    if (beginsWith(tokens[1], kReadWord)) {
        if (tokens.size() != kReadTokens)
            return genericError(kNoPortNumber);
        const auto port = static_cast<unsigned char>(ascii_getInt(tokens[2]));
        if (Answer refusal = checkRange(port))
            return refusal;
        return ascii_answer(readPort(port, &data), dataInHex);
    }
    if (beginsWith(tokens[1], kAttributesWord))
        return ascii_answer(getConfig(&data), dataInHex);
    if (beginsWith(tokens[1], kWriteWord))
        return writePort(tokens);
    return genericError(SharedTexts::kUnknownSubCommand, tokenText(tokens[1]).c_str());
}

Answer pReadCmd::writePort(const std::vector<std::vector<char>>& tokens) {
    if (Answer refusal = checkLength(kWriteLine, static_cast<int>(tokens.size())))
        return refusal;
    const auto port = static_cast<unsigned char>(ascii_getInt(tokens[2]));
    if (Answer refusal = checkOutput(port))
        return refusal;
    return writeLevel(port, tokens[3].empty() ? '\0' : tokens[3].front());
}
