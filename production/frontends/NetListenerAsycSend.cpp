#include "frontends/NetListenerAsycSend.h"

#include <sys/socket.h>

#include <cerrno>

#include "frontends/LineFraming.h"

namespace {

// An idle connection does not keep the memory of a long answer.
constexpr std::size_t kKeptCapacity = 4096;

} // namespace

NetListenerAsycSend::NetListenerAsycSend(int socket) : m_socket(socket) {}

void NetListenerAsycSend::asyncSend(std::string& text) {
    LineFraming::append(m_pending, text);
    sendPending(MSG_DONTWAIT);
}

void NetListenerAsycSend::asyncSend(std::vector<unsigned char>&) {}

void NetListenerAsycSend::flush() {
    sendPending(0);
    if (m_pending.capacity() > kKeptCapacity)
        std::string().swap(m_pending);
}

void NetListenerAsycSend::sendPending(int flags) {
    std::size_t sent = 0;
    while (sent < m_pending.size()) {
        const ssize_t count =
            ::send(m_socket, m_pending.data() + sent, m_pending.size() - sent, flags | MSG_NOSIGNAL);
        if (count >= 0)
            sent += static_cast<std::size_t>(count);
        else if (errno == EAGAIN || errno == EWOULDBLOCK)
            break;
        else if (errno != EINTR)
            sent = m_pending.size(); // nobody is left to read it
    }
    m_pending.erase(0, sent);
}
