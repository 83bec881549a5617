#include "manager/KernelCalls.h"

#include <poll.h>
#include <sys/socket.h>

#include <utility>

#include "support/DeviceControl.h"

namespace {

thread_local KernelCalls* s_current = nullptr;

} // namespace

KernelCalls::KernelCalls() {
    s_current = this;
}

KernelCalls::~KernelCalls() {
    s_current = nullptr;
}

std::optional<int> KernelCalls::onTransfer(i2c_rdwr_ioctl_data& transfer) {
    Transfer asked;
    for (unsigned at = 0; at < transfer.nmsgs; ++at) {
        const i2c_msg& message = transfer.msgs[at];
        asked.push_back({message.addr, message.flags, message.len, {}});
        if ((message.flags & I2C_M_RD) == 0)
            asked.back().sent.assign(message.buf, message.buf + message.len);
    }
    m_transfers.push_back(std::move(asked));
    return m_driver ? std::optional<int>(m_driver(transfer)) : std::nullopt;
}

std::optional<int> onDeviceControl(int, unsigned long request, void* argument) {
    if (s_current == nullptr || request != I2C_RDWR)
        return std::nullopt;
    return s_current->onTransfer(*static_cast<i2c_rdwr_ioctl_data*>(argument));
}

extern "C" {

int __real_poll(pollfd*, nfds_t, int);
int __wrap_poll(pollfd* events, nfds_t count, int limit) {
    KernelCalls* calls = events == nullptr ? nullptr : s_current;
    if (calls != nullptr)
        calls->notePollLimit(limit);
    return CallScript::call(calls, "poll", __real_poll, events, count, limit);
}

ssize_t __real_send(int, const void*, std::size_t, int);
ssize_t __wrap_send(int socket, const void* bytes, std::size_t size, int flags) {
    return CallScript::call(s_current, "send", __real_send, socket, bytes, size, flags);
}

ssize_t __real_recv(int, void*, std::size_t, int);
ssize_t __wrap_recv(int socket, void* bytes, std::size_t size, int flags) {
    return CallScript::call(s_current, "recv", __real_recv, socket, bytes, size, flags);
}

} // extern "C"
