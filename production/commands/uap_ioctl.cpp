#include "commands/uap_ioctl.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "core/Diagnostics.h"
#include "platform/NetworkStack.h"
#include "wire/LittleEndian.h"

int debug_level = 0;
const char dev_name[] = "uap0";

namespace {

enum Result { kFailed = 0, kReplied = 1 };

constexpr char kNoSocket[] = "ERR:Cannot open socket\n";
constexpr char kTooLarge[] = "response_size should not less than cmd buffer size\n";
constexpr char kSizes[] = "buf size = %d, *size = %d\n";
constexpr char kRefused[] = "%s(): MsgSendv_r() failed return %d, errno %d\n";
constexpr char kReplyTooLong[] = "ERR:Response size (%d) greater than buffer size (%d)! Aborting!\n";

constexpr std::uint32_t kHostCommand = 0xC01C697B;

// The header of a device control: message type, own size, command, size of the data, zero.
constexpr std::size_t kControlHeader = 16;
constexpr std::uint16_t kDeviceControl = 0x106;
constexpr std::uint32_t kDataSize = 48;

// The private request: interface name, command, size of the buffer, flag.
constexpr std::size_t kPrivateRequest = 28;
constexpr std::size_t kCommandAt = 16;
constexpr std::size_t kBufferSizeAt = 20;
constexpr std::size_t kFlagAt = 24;
constexpr std::uint32_t kFlag = 1;

std::array<unsigned char, kControlHeader> controlHeader() {
    std::array<unsigned char, kControlHeader> header{};
    putLittleEndian16(header.data(), kDeviceControl);
    putLittleEndian16(header.data() + 2, kControlHeader);
    putLittleEndian32(header.data() + 4, kHostCommand);
    putLittleEndian32(header.data() + 8, kDataSize);
    return header;
}

std::array<unsigned char, kPrivateRequest> privateRequest(int bufferSize) {
    std::array<unsigned char, kPrivateRequest> request{};
    static_assert(sizeof dev_name <= kCommandAt);
    std::memcpy(request.data(), dev_name, sizeof dev_name);
    putLittleEndian32(request.data() + kCommandAt, kHostCommand);
    putLittleEndian32(request.data() + kBufferSizeAt, static_cast<std::uint32_t>(bufferSize));
    putLittleEndian32(request.data() + kFlagAt, kFlag);
    return request;
}

int exchange(int socket, const System::ReplyPart& data, int bufferSize) {
    auto header = controlHeader();
    auto request = privateRequest(bufferSize);
    return System::messageInterface(
        socket, dev_name, {{header.data(), header.size()}, {request.data(), request.size()}, data});
}

} // namespace

int uap_ioctl(unsigned char* buffer, int* size, int bufferSize) {
    constexpr int kLengthField = 4;
    constexpr int kReplySizeAt = 6;
    const System::Descriptor socket = System::openDatagramSocket();
    if (!socket) {
        printError(kNoSocket);
        return kFailed;
    }
    if (*size > bufferSize) {
        printError(kTooLarge);
        return kFailed;
    }
    const int room = bufferSize - kLengthField;
    putLittleEndian32(buffer, static_cast<std::uint32_t>(room));
    if (debug_level > 1)
        printError(kSizes, bufferSize, *size);
    const auto length = static_cast<std::size_t>(std::max(*size, bufferSize));
    if (const int result = exchange(socket.get(), {buffer, length}, bufferSize); result != 0) {
        const int error = errno;
        printError(kRefused, __func__, result, error);
        return result;
    }
    *size = littleEndian16(buffer + kReplySizeAt);
    if (*size <= room)
        return kReplied;
    printError(kReplyTooLong, *size, bufferSize);
    return kFailed;
}
