#include "devices/I2c.h"

#include <array>
#include <cerrno>
#include <cstring>

#include "core/StringFormat.h"
#include "platform/DeviceManager.h"
#include "wire/I2cRequests.h"

namespace {

using System::I2cRequest::kReceive;
using System::I2cRequest::kSend;
using System::I2cRequest::kSendReceive;
using System::I2cRequest::kSetBusSpeed;
using System::I2cRequest::kSevenBits;

// Bytes that a bus manager did not send are no zeros that the slave sent.
constexpr System::ReplySize kWhole = System::ReplySize::Whole;

constexpr unsigned kFirstSpeed = 100000;

constexpr char kNotOpen[] = "Trying to get bus speed on an unitialized handler";
constexpr char kOpenError[] = "Open Error for ";
constexpr char kSpeedError[] = "setBusSpeed Error on Device ";
constexpr char kWriteError[] = "Write Error on Device ";
constexpr char kReadError[] = "Read Error on Device ";
constexpr char kTransferError[] = "Transfer Error on Device ";

constexpr char kLocked[] = ": The master is locked by another connection";
constexpr char kSendFailed[] = ": The master send failed";
constexpr char kBadSlave[] = ": bad slave address/ bad bus speed/ bus is busy";
constexpr char kNoMemory[] = ": Insufficient memory";
constexpr char kBadBuffer[] = ": An error occurred while accessing the data buffer";
constexpr char kBadFormat[] = ": Bad message format";

// What the manager expects ahead of the data: 32-bit numbers in the machine's own order.
using Header = std::array<std::uint32_t, 4>; // address, format, length, stop
using CombinedHeader =
    std::array<std::uint32_t, 5>; // address, format, lengths to send and receive, stop

DeviceResult notOpen() {
    return {DeviceError::kNotUsable, kNotOpen};
}

std::string systemText(int result) {
    return std::string(": ") + std::strerror(result);
}

/// What a result of a write or a combined transfer means.
std::string sendMeaning(int result) {
    switch (result) {
        case EPERM:
            return kLocked;
        case EIO:
            return kSendFailed;
        case ENOMEM:
            return kNoMemory;
        case EFAULT:
            return kBadBuffer;
        case EINVAL:
            return kBadFormat;
        default:
            return systemText(result);
    }
}

/// A read's results mean something else, on purpose.
std::string receiveMeaning(int result) {
    switch (result) {
        case EIO:
            return kBadSlave;
        case ENOMEM:
            return kLocked;
        case EINVAL:
            return kBadFormat;
        default:
            return systemText(result);
    }
}

} // namespace

I2c::~I2c() {
    I2c::close();
}

int I2c::close() {
    return m_device.close() == 0 ? 0 : -1;
}

void I2c::disableStopBit() {
    m_stop = false;
}

void I2c::enableStopBit() {
    m_stop = true;
}

bool I2c::isStopBitEnabled() {
    return m_stop;
}

bool I2c::isOpen() const {
    return static_cast<bool>(m_device);
}

DeviceResult I2c::open(const std::string& path) {
    if (isOpen())
        return {};
    errno = 0;
    System::Descriptor device = System::openDevice(path.c_str());
    if (!device) {
        const int error = errno;
        return {error, kOpenError + path + ": " + string_format("%s %d", std::strerror(error), error)};
    }
    m_device = std::move(device);
    m_path = path;
    m_addressFormat = kSevenBits;
    m_stop = true;
    m_speed = kFirstSpeed;
    return {};
}

DeviceResult I2c::getBusSpeed(unsigned& speed) {
    if (!isOpen())
        return notOpen();
    speed = m_speed;
    return {};
}

DeviceResult I2c::setBusSpeed(unsigned speed) {
    if (!isOpen())
        return notOpen();
    const int result = System::requestDevice(m_device.get(), kSetBusSpeed, &speed, sizeof speed);
    if (result != 0)
        return {result, kSpeedError + m_path + (result == EINVAL ? kBadFormat : systemText(result))};
    m_speed = speed;
    return {};
}

DeviceResult I2c::write(unsigned address, const void* buffer, unsigned length) {
    if (!isOpen())
        return notOpen();
    const Header header = {address, m_addressFormat, length, m_stop ? 1U : 0U};
    const int result = System::requestDevice(m_device.get(), kSend,
                                             {{header.data(), sizeof header}, {buffer, length}}, {});
    if (result != 0)
        return {result, kWriteError + m_path + sendMeaning(result)};
    return {};
}

DeviceResult I2c::read(unsigned address, void* buffer, unsigned length) {
    if (!isOpen())
        return notOpen();
    Header header = {address, m_addressFormat, length, m_stop ? 1U : 0U};
    const int result = System::requestDevice(m_device.get(), kReceive, {},
                                             {{header.data(), sizeof header}, {buffer, length}}, kWhole);
    if (result != 0)
        return {result, kReadError + m_path + receiveMeaning(result)};
    return {};
}

DeviceResult I2c::transfer(unsigned address, const void* sendBuffer, unsigned sendLength,
                           void* receiveBuffer, unsigned receiveLength) {
    if (!isOpen())
        return notOpen();
    CombinedHeader header = {address, m_addressFormat, sendLength, receiveLength, m_stop ? 1U : 0U};
    const int result = System::requestDevice(
        m_device.get(), kSendReceive, {{header.data(), sizeof header}, {sendBuffer, sendLength}},
        {{header.data(), sizeof header}, {receiveBuffer, receiveLength}}, kWhole);
    if (result != 0)
        return {result, kTransferError + m_path + sendMeaning(result)};
    return {};
}
