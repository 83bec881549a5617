#include "platform/DeviceManager.h"

#include <devctl.h>
#include <fcntl.h>

#include <cerrno>

#include "platform/qnx/CloseOnExec.h"
#include "platform/qnx/Vector.h"
#include "platform/qnx/WaitLimit.h"

namespace System {

Descriptor openDevice(const char* path) {
    return closeOnExec(::open64(path, O_RDWR | O_NONBLOCK));
}

// A command that carries data towards the device but has no send part is passed on as it is: here the
// manager itself looks for its input where the reply goes. How much has come back, nobody tells.
int requestDevice(int device, std::uint32_t command, const std::vector<SendPart>& send,
                  const std::vector<ReplyPart>& reply, ReplySize) {
    const std::vector<iov_t> sent = vectorOf(send);
    const std::vector<iov_t> received = vectorOf(reply);
    if (!limitNextWait(kLongestAnswer))
        return errno;
    return ::devctlv(device, static_cast<int>(command), static_cast<int>(sent.size()),
                     static_cast<int>(received.size()), sent.data(), received.data(), nullptr);
}

int requestDevice(int device, std::uint32_t command, void* data, std::size_t size) {
    if (!limitNextWait(kLongestAnswer))
        return errno;
    return ::devctl(device, static_cast<int>(command), data, size, nullptr);
}

} // namespace System
