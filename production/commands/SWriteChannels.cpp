// The channels themselves: serial lines, and the wireless chip's two sides.
#include <algorithm>
#include <optional>

#include "commands/DeviceOutcome.h"
#include "commands/SWriteCmd.h"
#include "devices/CommHandler.h"

namespace {

constexpr unsigned char kWlanChannel = 240;
constexpr unsigned char kBluetoothChannel = 241;

constexpr unsigned char kTwoStopBits = 0x01;
constexpr unsigned char kParityBits = 0x06;
constexpr unsigned char kSevenDataBits = 0x08;

constexpr std::size_t kGetAllBytes = 247;
constexpr unsigned int kReadMs = 20;

enum Code : std::uint32_t {
    kIoFailed = 0x0A000000,
    kNoSuchChannel = 0x0A000004,
    kNoSuchParity = 0x0A000008,
    kOpenFailed = 0x0A000040,
    kCloseFailed = 0x0A000080,
};

constexpr char kInUse[] = "Channel is a already in use by Bios";
constexpr char kUnknownParity[] = "Could not detect Parity";
constexpr char kUnknownChannel[] = "Interface id %d unknown";
constexpr char kStopBitsFailed[] = "%s, stopbits: %d, errorcode: %d";
constexpr char kNoPacketType[] = "Expected Data to send";

/// Nothing for the one value that stands for none.
std::optional<CommInterface::Parity> parityIn(unsigned char flags) {
    constexpr unsigned char kNone = 0, kEven = 4, kOdd = 6;
    switch (flags & kParityBits) {
        case kNone:
            return CommInterface::None;
        case kEven:
            return CommInterface::Even;
        case kOdd:
            return CommInterface::Odd;
        default:
            return std::nullopt;
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

} // namespace

bool SWriteCmd::isWireless(unsigned char channel) {
    return channel == kWlanChannel || channel == kBluetoothChannel;
}

Answer SWriteCmd::open(unsigned char channel, unsigned int baud, unsigned char flags) {
    const bool isStationsOwn = listener() != nullptr && channel == listener()->getDeviceListNumber();
    if (isStationsOwn && !m_mayTakeStationsChannel)
        return failure(kOpenFailed, kInUse);
    const auto parity = parityIn(flags);
    if (!parity)
        return failure(kNoSuchParity, kUnknownParity);
    const unsigned stopBits = (flags & kTwoStopBits) != 0 ? 2 : 1;
    const unsigned dataBits = (flags & kSevenDataBits) != 0 ? 7 : 8;
    Comm::Handle* handle = nullptr;
    DeviceResult result = comm()->device(&handle, channel);
    if (!result.failed())
        result = handle->open(baud, dataBits, stopBits, *parity, channel);
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
