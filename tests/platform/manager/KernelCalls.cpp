#include "manager/KernelCalls.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdarg>
#include <utility>

namespace {

thread_local KernelCalls* s_current = nullptr;

} // namespace

KernelCalls::KernelCalls() {
    s_current = this;
}

KernelCalls::~KernelCalls() {
    s_current = nullptr;
    for (const auto& [function, steps] : m_script)
        EXPECT_TRUE(steps.empty()) << steps.size() << " calls of function " << function << " never came";
}

void KernelCalls::failNext(Function function, int error) {
    m_script[function].emplace_back([error]() -> std::optional<int> {
        errno = error;
        return -1;
    });
}

void KernelCalls::timeOutNext() {
    m_script[Poll].emplace_back([]() -> std::optional<int> { return 0; });
}

void KernelCalls::passNext(Function function) {
    m_script[function].emplace_back([] { return std::optional<int>(); });
}

std::optional<int> KernelCalls::next(Function function) {
    std::deque<Step>& steps = m_script[function];
    if (steps.empty())
        return std::nullopt;
    const Step step = std::move(steps.front());
    steps.pop_front();
    return step();
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

extern "C" {

int __real_poll(pollfd*, nfds_t, int);
int __wrap_poll(pollfd* events, nfds_t count, int limit) {
    if (s_current == nullptr || events == nullptr)
        return __real_poll(events, count, limit);
    s_current->notePollLimit(limit);
    const std::optional<int> result = s_current->next(KernelCalls::Poll);
    return result ? *result : __real_poll(events, count, limit);
}

ssize_t __real_send(int, const void*, std::size_t, int);
ssize_t __wrap_send(int socket, const void* bytes, std::size_t size, int flags) {
    const std::optional<int> result =
        s_current == nullptr ? std::nullopt : s_current->next(KernelCalls::Send);
    return result ? *result : __real_send(socket, bytes, size, flags);
}

ssize_t __real_recv(int, void*, std::size_t, int);
ssize_t __wrap_recv(int socket, void* bytes, std::size_t size, int flags) {
    const std::optional<int> result =
        s_current == nullptr ? std::nullopt : s_current->next(KernelCalls::Receive);
    return result ? *result : __real_recv(socket, bytes, size, flags);
}

int __real_ioctl(int, unsigned long, ...);
int __wrap_ioctl(int device, unsigned long request, ...) {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    std::optional<int> result;
    if (s_current != nullptr && request == I2C_RDWR)
        result = s_current->onTransfer(*static_cast<i2c_rdwr_ioctl_data*>(argument));
    return result ? *result : __real_ioctl(device, request, argument);
}

} // extern "C"
