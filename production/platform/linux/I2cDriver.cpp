#include "platform/linux/I2cDriver.h"

#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <limits>

#include "wire/I2cRequests.h"

namespace System::I2cDriver {
namespace {

using I2cRequest::kReceive;
using I2cRequest::kSend;
using I2cRequest::kSendReceive;
using I2cRequest::kSetBusSpeed;

constexpr std::uint32_t kHighestAddress = 0x7F;
constexpr std::size_t kHeaderNumbers = 4;
constexpr std::size_t kCombinedHeaderNumbers = 5;

using Numbers = std::array<std::uint32_t, kCombinedHeaderNumbers>;

/// The header's numbers; false when there are not that many.
bool readHeader(const std::vector<SendPart>& send, std::size_t count, Numbers& numbers) {
    if (send.empty() || send.front().size < count * sizeof numbers[0])
        return false;
    std::memcpy(numbers.data(), send.front().bytes, count * sizeof numbers[0]);
    return true;
}

bool fits(std::size_t length) {
    return length <= std::numeric_limits<decltype(i2c_msg::len)>::max();
}

i2c_msg message(std::uint32_t address, std::uint16_t flags, const void* bytes, std::size_t length) {
    i2c_msg message{};
    message.addr = static_cast<std::uint16_t>(address);
    message.flags = flags;
    message.len = static_cast<std::uint16_t>(length);
    // The driver does not write through the pointer of a message that is sent.
    message.buf = static_cast<unsigned char*>(const_cast<void*>(bytes));
    return message;
}

int exchange(int device, i2c_msg* messages, std::uint32_t count) {
    i2c_rdwr_ioctl_data transfer{messages, count};
    // Not repeated after EINTR: some of the bytes may have been on the bus.
    const int result = ::ioctl(device, I2C_RDWR, &transfer);
    if (result < 0)
        return errno;
    // The driver tells how many of the messages it has got through with.
    return static_cast<std::uint32_t>(result) == count ? 0 : EIO;
}

int plain(int device, const std::vector<SendPart>& send, const void* bytes, std::size_t size,
          std::uint16_t flags) {
    Numbers header{};
    if (!readHeader(send, kHeaderNumbers, header))
        return EINVAL;
    const auto [address, format, length, stop, none] = header;
    if (length > size || !fits(length))
        return EINVAL;
    if (stop == 0)
        return EOPNOTSUPP;
    if (address > kHighestAddress)
        return ENXIO;
    i2c_msg only = message(address, flags, bytes, length);
    return exchange(device, &only, 1);
}

int combined(int device, const std::vector<SendPart>& send, const std::vector<ReplyPart>& reply) {
    Numbers header{};
    if (!readHeader(send, kCombinedHeaderNumbers, header) || send.size() < 2 || reply.size() < 2)
        return EINVAL;
    const auto [address, format, sendLength, receiveLength, stop] = header;
    if (sendLength > send[1].size || receiveLength > reply[1].size || !fits(sendLength) ||
        !fits(receiveLength))
        return EINVAL;
    if (stop == 0)
        return EOPNOTSUPP;
    if (address > kHighestAddress)
        return ENXIO;
    std::array<i2c_msg, 2> both = {message(address, 0, send[1].bytes, sendLength),
                                   message(address, I2C_M_RD, reply[1].bytes, receiveLength)};
    return exchange(device, both.data(), both.size());
}

} // namespace

int request(int device, std::uint32_t command, const std::vector<SendPart>& send,
            const std::vector<ReplyPart>& reply) {
    switch (command) {
        case kSetBusSpeed:
            return EOPNOTSUPP;
        case kSend:
            return send.size() < 2 ? EINVAL : plain(device, send, send[1].bytes, send[1].size, 0);
        case kReceive:
            return reply.size() < 2 ? EINVAL
                                    : plain(device, send, reply[1].bytes, reply[1].size, I2C_M_RD);
        case kSendReceive:
            return combined(device, send, reply);
        default:
            return ENOTTY;
    }
}

} // namespace System::I2cDriver
