#include "frontends/NetListenerAsycSend.h"

#include <sys/socket.h>

#include <cerrno>

#include "frontends/ScarcityPause.h"
#include "wire/Line.h"

namespace {

bool isFull(int error) {
    return error == EAGAIN || error == EWOULDBLOCK;
}

/// The system has no room for what the connection would take.
bool isScarcity(int error) {
    return error == ENOBUFS || error == ENOMEM;
}

} // namespace

NetListenerAsycSend::NetListenerAsycSend(int socket) : m_socket(socket) {}

void NetListenerAsycSend::asyncSend(std::string& text) {
    std::string line;
    wire::appendAnswer(line, text);
    send(line, 0);
}

void NetListenerAsycSend::asyncSend(std::vector<unsigned char>&) {}

std::size_t NetListenerAsycSend::send(std::string_view bytes, int flags) const {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count =
            ::send(m_socket, bytes.data() + sent, bytes.size() - sent, flags | MSG_NOSIGNAL);
        if (count >= 0)
            sent += static_cast<std::size_t>(count);
        else if (isFull(errno) || (isScarcity(errno) && (flags & MSG_DONTWAIT) != 0))
            break;
        else if (isScarcity(errno))
            pauseForScarcity();
        else if (errno != EINTR)
            return bytes.size(); // nobody is left to read it
    }
    return sent;
}
