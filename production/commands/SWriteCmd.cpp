#include "commands/SWriteCmd.h"

#include <algorithm>
#include <string>

#include "commands/DeviceOutcome.h"
#include "core/StringFormat.h"
#include "core/TokenText.h"
#include "devices/CommHandler.h"
#include "wire/BigEndian.h"

namespace {

enum Command : unsigned char { Open = 0, Close = 1, Send = 2, Get = 3, GetAll = 4 };

constexpr unsigned char kWlanChannel = 240;
constexpr unsigned char kBluetoothChannel = 241;

constexpr int kShortestOpen = 4;
constexpr int kShortestSerialOpen = 9;
constexpr int kCloseLength = 4;
constexpr int kShortestSend = 5;
constexpr int kGetLength = 5;
constexpr int kShortestGetAll = 4;
constexpr std::size_t kChannelAt = 3;
constexpr std::size_t kBaudAt = 4;
constexpr std::size_t kFlagsAt = 8;
constexpr std::size_t kDataAt = 4;
constexpr std::size_t kCountAt = 4;

constexpr std::size_t kFewestOpenTokens = 3;
constexpr std::size_t kFewestSerialOpenTokens = 5;
constexpr std::size_t kCloseTokens = 3;
constexpr std::size_t kSendTokens = 4;
constexpr std::size_t kGetTokens = 4;
constexpr std::size_t kGetAllTokens = 3;

constexpr unsigned char kTwoStopBits = 0x01;
constexpr unsigned char kParityBits = 0x06;
constexpr unsigned char kEven = 0x04;
constexpr unsigned char kOdd = 0x06;
constexpr unsigned char kSevenDataBits = 0x08;

constexpr unsigned char kMostWanted = 242;
constexpr int kStatedMost = 247;
constexpr std::size_t kGetAllBytes = 247;
constexpr unsigned int kReadMs = 20;

constexpr unsigned int kReadSize = 0x10;
constexpr unsigned int kIoFailed = 0x0A000000;
constexpr unsigned int kNoSuchChannel = 0x0A000004;
constexpr unsigned int kNoSuchParity = 0x0A000008;
constexpr unsigned int kOpenFailed = 0x0A000040;
constexpr unsigned int kCloseFailed = 0x0A000080;

constexpr char kNotSupported[] = "Command %d not supported";
constexpr char kNoSubCommand[] = "no sub command found";
constexpr char kInUse[] = "Channel is a already in use by Bios";
constexpr char kUnknownParity[] = "Could not detect Parity";
constexpr char kUnknownChannel[] = "Interface id %d unknown";
constexpr char kStopBitsFailed[] = "%s, stopbits: %d, errorcode: %d";
constexpr char kOverflow[] = "Overflow of Requesting Bytes to Read, allowed: [1,%d], requested: %d";

constexpr char kOpenTooShort[] = "Expected 4 Bytes min., received %d";
constexpr char kSerialOpenTooShort[] = "Expected 9 Bytes min., received %d";
constexpr char kWrongCloseLength[] = "Expected 4 Bytes, received %d";
constexpr char kSendTooShort[] = "Expected at least 5 Bytes, received %d";
constexpr char kWrongGetLength[] = "Expected 5 Bytes, received %d";
constexpr char kGetAllTooShort[] = "Expected at least 4 Bytes, received %d";

constexpr char kTooFewOpenTokens[] = "Expected 3 Parameters min., received %d";
constexpr char kTooFewSerialOpenTokens[] = "Expected 5 Parameters, received %d";
constexpr char kWrongCloseTokens[] = "Expected 3 Parameter, received %d";
constexpr char kAtLeastThree[] = "Expected at least 3 Parameters, received %d";
constexpr char kAtLeastTwo[] = "Expected at least 2 Parameters, received %d";
constexpr char kNoPacketType[] = "Expected Data to send";

Answer checkWanted(unsigned char count, int requested) {
    if (static_cast<unsigned char>(count - 1) < kMostWanted)
        return nullptr;
    return failure(kReadSize, kOverflow, kStatedMost, requested);
}

/// False for the one value that means nothing.
bool decodeParity(unsigned char flags, CommInterface::Parity& parity) {
    switch (flags & kParityBits) {
        case 0:
            parity = CommInterface::None;
            return true;
        case kEven:
            parity = CommInterface::Even;
            return true;
        case kOdd:
            parity = CommInterface::Odd;
            return true;
        default:
            return false;
    }
}

Answer openFailure(const DeviceResult& result, unsigned char channel, unsigned stopBits) {
    if (result.code == DeviceError::kStopBits)
        return failure(kOpenFailed, kStopBitsFailed, result.message.c_str(), static_cast<int>(stopBits),
                       result.code);
    if (result.code == DeviceError::kNoSuchChannel)
        return failure(kNoSuchChannel, kUnknownChannel, channel);
    return deviceFailure(kOpenFailed, result);
}

std::string received(const char* word, unsigned char channel, const std::string& bytes) {
    return string_format("%s 0x%02X %s", word, channel, bytes.c_str());
}

} // namespace

System::Mutex SWriteCmd::s_singleton_mutex(System::Mutex::Normal);

SWriteCmd* SWriteCmd::getInstance() {
    const System::Lock lock(s_singleton_mutex);
    static SWriteCmd* const instance = new SWriteCmd;
    return instance;
}

SWriteCmd::SWriteCmd() : AbstractCmd('S', "serial", true) {}

Answer SWriteCmd::run(const std::vector<unsigned char>* request) {
    const int command = tavrin_getCommand(request);
    std::vector<unsigned char> nothing;
    switch (command) {
        case Open:
            return tavrin_answer(request, openTavrin(request), nothing);
        case Close:
            return tavrin_answer(request, closeTavrin(request), nothing);
        case Send:
            return tavrin_answer(request, sendTavrin(request), nothing);
        case Get:
            return getTavrin(request);
        case GetAll:
            return getAllTavrin(request);
        default:
            return genericError(kNotSupported, command);
    }
}

Answer SWriteCmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < 2)
        return genericError(kNoSubCommand);
    const std::vector<char>& word = tokens[1];
    if (beginsWith(word, "open"))
        return openAscii(tokens);
    if (beginsWith(word, "close"))
        return closeAscii(tokens);
    if (beginsWith(word, "send"))
        return sendAscii(tokens);
    // One letter less than the word has is enough.
    if (beginsWith(word, "getal"))
        return getAllAscii(tokens);
    if (beginsWith(word, "get"))
        return getAscii(tokens);
    return genericError(kNotSupported, word.empty() ? 0 : static_cast<unsigned char>(word.front()));
}

Answer SWriteCmd::open(unsigned char channel, unsigned int baud, unsigned char flags) {
    const bool isStationsOwn = listener() != nullptr && channel == listener()->getDeviceListNumber();
    if (isStationsOwn && !m_mayTakeStationsChannel)
        return failure(kOpenFailed, kInUse);
    CommInterface::Parity parity = CommInterface::None;
    if (!decodeParity(flags, parity))
        return failure(kNoSuchParity, kUnknownParity);
    const unsigned stopBits = (flags & kTwoStopBits) != 0 ? 2 : 1;
    const unsigned dataBits = (flags & kSevenDataBits) != 0 ? 7 : 8;
    Comm::Handle* handle = nullptr;
    DeviceResult result = comm()->device(&handle, channel);
    if (!result.failed())
        result = handle->open(baud, dataBits, stopBits, parity, channel);
    return result.failed() ? openFailure(result, channel, stopBits) : success();
}

Answer SWriteCmd::openWireless(unsigned char channel) {
    if (channel == kWlanChannel)
        return sdioOpen();
    return m_bluetooth.open() == 0 ? success() : failure(kOpenFailed);
}

Answer SWriteCmd::close(unsigned char channel) {
    if (channel == kWlanChannel)
        return sdioClose();
    if (channel == kBluetoothChannel)
        return m_bluetooth.close() == 0 ? success() : failure(kCloseFailed);
    Comm::Handle* handle = nullptr;
    const DeviceResult found = comm()->device(&handle, channel);
    return deviceOutcome(kIoFailed, found.failed() ? found : handle->close());
}

Answer SWriteCmd::send(unsigned char channel, const unsigned char* data, std::size_t length) {
    if (channel == kWlanChannel)
        return sdioSend(data, length);
    if (channel == kBluetoothChannel) {
        if (length == 0)
            return genericError(kNoPacketType);
        m_bluetooth.write(data[0], data + 1, static_cast<int>(length - 1));
        return success();
    }
    Comm::Handle* handle = nullptr;
    const DeviceResult found = comm()->device(&handle, channel);
    return deviceOutcome(kIoFailed,
                         found.failed() ? found : handle->write(data, static_cast<int>(length)));
}

Answer SWriteCmd::get(unsigned char channel, unsigned char count, std::vector<unsigned char>& data) {
    data.assign(count, 0);
    if (channel == kWlanChannel)
        return sdioGet(count, data);
    if (channel == kBluetoothChannel)
        return m_bluetooth.readnbytes(data, kReadMs, count) != 0 ? success() : failure(kIoFailed);
    Comm::Handle* handle = nullptr;
    const DeviceResult found = comm()->device(&handle, channel);
    unsigned arrived = 0;
    // What has not arrived stays zero: the station gets as many bytes as it asks for.
    return deviceOutcome(kIoFailed,
                         found.failed() ? found : handle->read(arrived, data.data(), count, kReadMs));
}

Answer SWriteCmd::getAll(unsigned char channel, std::vector<unsigned char>& data) {
    data.assign(kGetAllBytes, 0);
    if (channel == kWlanChannel)
        return sdioGet(kGetAllBytes, data);
    if (channel == kBluetoothChannel)
        return m_bluetooth.read(data, kReadMs) != 0 ? success() : failure(kIoFailed);
    Comm::Handle* handle = nullptr;
    DeviceResult result = comm()->device(&handle, channel);
    unsigned arrived = 0;
    if (!result.failed())
        result = handle->read(arrived, data.data(), static_cast<int>(data.size()), kReadMs);
    data.resize(std::min<std::size_t>(static_cast<unsigned char>(arrived), kGetAllBytes));
    return deviceOutcome(kIoFailed, result);
}

Answer SWriteCmd::openTavrin(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length < kShortestOpen)
        return genericError(kOpenTooShort, length);
    const unsigned char channel = (*request)[kChannelAt];
    if (channel == kWlanChannel || channel == kBluetoothChannel)
        return openWireless(channel);
    if (length < kShortestSerialOpen)
        return genericError(kSerialOpenTooShort, length);
    return open(channel, bigEndian32(*request, kBaudAt), (*request)[kFlagsAt]);
}

Answer SWriteCmd::closeTavrin(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    return length == kCloseLength ? close((*request)[kChannelAt])
                                  : genericError(kWrongCloseLength, length);
}

Answer SWriteCmd::sendTavrin(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length < kShortestSend)
        return genericError(kSendTooShort, length);
    return send((*request)[kChannelAt], request->data() + kDataAt, request->size() - kDataAt);
}

Answer SWriteCmd::getTavrin(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length != kGetLength)
        return genericError(kWrongGetLength, length);
    const unsigned char count = (*request)[kCountAt];
    // The refusal names the request's length in place of the count.
    if (Answer refusal = checkWanted(count, length))
        return refusal;
    std::vector<unsigned char> data;
    return tavrin_answer(request, get((*request)[kChannelAt], count, data), data);
}

Answer SWriteCmd::getAllTavrin(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length < kShortestGetAll)
        return genericError(kGetAllTooShort, length);
    std::vector<unsigned char> data;
    return tavrin_answer(request, getAll((*request)[kChannelAt], data), data);
}

unsigned char SWriteCmd::byteToken(const std::vector<char>& token) const {
    return static_cast<unsigned char>(ascii_getInt(token));
}

Answer SWriteCmd::openAscii(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < kFewestOpenTokens)
        return wrongTokenCount(kTooFewOpenTokens, tokens);
    const unsigned char channel = byteToken(tokens[2]);
    if (channel == kWlanChannel || channel == kBluetoothChannel)
        return openWireless(channel);
    if (tokens.size() < kFewestSerialOpenTokens)
        return wrongTokenCount(kTooFewSerialOpenTokens, tokens);
    return open(channel, static_cast<unsigned int>(ascii_getInt(tokens[3])), byteToken(tokens[4]));
}

Answer SWriteCmd::closeAscii(const std::vector<std::vector<char>>& tokens) {
    return tokens.size() == kCloseTokens ? close(byteToken(tokens[2]))
                                         : wrongTokenCount(kWrongCloseTokens, tokens);
}

Answer SWriteCmd::sendAscii(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kSendTokens)
        return wrongTokenCount(kAtLeastThree, tokens);
    const std::vector<unsigned char> data(tokens[3].begin(), tokens[3].end());
    return send(byteToken(tokens[2]), data.data(), data.size());
}

Answer SWriteCmd::getAscii(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kGetTokens)
        return wrongTokenCount(kAtLeastThree, tokens);
    const unsigned char channel = byteToken(tokens[2]);
    const unsigned char count = byteToken(tokens[3]);
    if (Answer refusal = checkWanted(count, count))
        return refusal;
    std::vector<unsigned char> data;
    return ascii_answer(get(channel, count, data),
                        [&] { return received("get", channel, ascii_buildBase64String(data)); });
}

Answer SWriteCmd::getAllAscii(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kGetAllTokens)
        return wrongTokenCount(kAtLeastTwo, tokens);
    const unsigned char channel = byteToken(tokens[2]);
    std::vector<unsigned char> data;
    return ascii_answer(getAll(channel, data),
                        [&] { return received("getall", channel, ascii_buildBase64String(data)); });
}
