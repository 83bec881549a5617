#include "frontends/NetListenerAsycSend.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "frontends/LineFraming.h"

namespace {

// As much as a socket takes at once; more would keep a dispatcher busy for as long as a fast peer reads
// on.
constexpr std::size_t kSentAtOnce = std::size_t{64} << 10;

} // namespace

NetListenerAsycSend::NetListenerAsycSend(int socket) : m_socket(socket) {}

void NetListenerAsycSend::asyncSend(std::string& text) {
    if (m_pending.empty())
        m_pending = LineFraming::frame(std::move(text));
    else
        LineFraming::append(m_pending, text);
    sendSome(kSentAtOnce, MSG_DONTWAIT);
}

void NetListenerAsycSend::asyncSend(std::vector<unsigned char>&) {}

void NetListenerAsycSend::answer(std::string text) {
    sendAll();
    m_pending = LineFraming::frame(std::move(text));
    sendAll();
}

void NetListenerAsycSend::sendAll() {
    while (m_sent < m_pending.size())
        sendSome(m_pending.size(), 0);
    // An idle connection does not keep the memory of a long answer.
    std::string().swap(m_pending);
    m_sent = 0;
}

void NetListenerAsycSend::sendSome(std::size_t limit, int flags) {
    const std::size_t size = std::min(limit, m_pending.size() - m_sent);
    const ssize_t count = ::send(m_socket, m_pending.data() + m_sent, size, flags | MSG_NOSIGNAL);
    if (count >= 0)
        m_sent += static_cast<std::size_t>(count);
    else if (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK)
        m_sent = m_pending.size(); // nobody is left to read it
}
