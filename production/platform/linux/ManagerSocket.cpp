#include "platform/linux/ManagerSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "platform/posix/Readiness.h"
#include "wire/LittleEndian.h"

namespace System::ManagerSocket {
namespace {

constexpr std::size_t kRequestHeader = 16;
constexpr std::size_t kAnswerHeader = 4;

template <typename Part>
std::size_t bytesIn(const std::vector<Part>& parts) {
    std::size_t bytes = 0;
    for (const Part& part : parts)
        bytes += part.size;
    return bytes;
}

std::vector<unsigned char> packetFor(std::uint32_t command, const std::vector<SendPart>& send,
                                     std::size_t replyBytes) {
    const std::size_t sendBytes = bytesIn(send);
    std::vector<unsigned char> packet;
    packet.reserve(kRequestHeader + sendBytes);
    appendLittleEndian32(packet, command);
    appendLittleEndian32(packet, static_cast<std::uint32_t>(sendBytes));
    appendLittleEndian32(packet, static_cast<std::uint32_t>(replyBytes));
    appendLittleEndian32(packet, 0);
    for (const SendPart& part : send) {
        const auto* bytes = static_cast<const unsigned char*>(part.bytes);
        packet.insert(packet.end(), bytes, bytes + part.size);
    }
    return packet;
}

int sendPacket(int socket, const std::vector<unsigned char>& packet,
               std::chrono::steady_clock::time_point deadline) {
    for (;;) {
        if (::send(socket, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0)
            return 0;
        // An interrupted send has sent nothing: a packet goes whole or not at all.
        if (errno == EINTR)
            continue;
        if ((errno != EAGAIN && errno != EWOULDBLOCK) || !waitUntilReady(socket, POLLOUT, deadline))
            return errno;
    }
}

int receivePacket(int socket, std::vector<unsigned char>& packet,
                  std::chrono::steady_clock::time_point deadline) {
    for (;;) {
        if (!waitUntilReady(socket, POLLIN, deadline))
            return errno;
        const ssize_t count = ::recv(socket, packet.data(), packet.size(), MSG_DONTWAIT);
        if (count > 0) {
            packet.resize(static_cast<std::size_t>(count));
            return 0;
        }
        if (count == 0)
            return EPIPE;
        if (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK)
            return errno;
    }
}

/// Hands what follows the result to the parts, in their order.
void distribute(const std::vector<unsigned char>& answer, const std::vector<ReplyPart>& reply) {
    std::size_t at = kAnswerHeader;
    for (const ReplyPart& part : reply) {
        const std::size_t size = std::min(part.size, answer.size() - at);
        if (size != 0)
            std::memcpy(part.bytes, answer.data() + at, size);
        at += size;
    }
}

sockaddr_un addressOf(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    return address;
}

/// Which path a descriptor was opened with: the manager may know its own socket by another one.
class OpenedPaths {
public:
    void note(int socket, const char* path) {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_paths[socket] = path;
    }

    std::string pathOf(int socket) {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_paths[socket];
    }

private:
    std::mutex m_lock;
    std::map<int, std::string> m_paths;
};

OpenedPaths& openedPaths() {
    static auto* const paths = new OpenedPaths;
    return *paths;
}

Descriptor connectTo(const char* path) {
    if (std::strlen(path) >= sizeof sockaddr_un{}.sun_path) {
        errno = ENAMETOOLONG;
        return {};
    }
    Descriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const sockaddr_un address = addressOf(path);
    if (socket &&
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        socket.reset();
    return socket;
}

/// Puts a new connection to the same manager behind the descriptor. Returns 0 or an error number.
int reconnect(int socket) {
    const Descriptor fresh = connectTo(openedPaths().pathOf(socket).c_str());
    return fresh && ::dup3(fresh.get(), socket, O_CLOEXEC) >= 0 ? 0 : errno;
}

/// Whether the manager has gone, or was given up: nothing that comes may be taken for an answer.
bool isOver(int socket) {
    pollfd event{socket, POLLIN, 0};
    return ::poll(&event, 1, 0) > 0;
}

} // namespace

bool isAt(const char* path) {
    struct stat status {};
    return ::stat(path, &status) == 0 && S_ISSOCK(status.st_mode);
}

Descriptor connect(const char* path) {
    Descriptor socket = connectTo(path);
    if (socket)
        openedPaths().note(socket.get(), path);
    return socket;
}

int request(int socket, std::uint32_t command, const std::vector<SendPart>& send,
            const std::vector<ReplyPart>& reply, ReplySize needed) {
    if (isOver(socket)) {
        if (const int error = reconnect(socket); error != 0)
            return error;
    }
    const std::size_t replyBytes = bytesIn(reply);
    const auto deadline = std::chrono::steady_clock::now() + kLongestAnswer;
    std::vector<unsigned char> answer(kAnswerHeader + replyBytes);
    int error = sendPacket(socket, packetFor(command, send, replyBytes), deadline);
    if (error == 0)
        error = receivePacket(socket, answer, deadline);
    if (error == 0 && answer.size() < kAnswerHeader)
        error = EPROTO;
    if (error != 0) {
        // A late answer must not meet the next request.
        ::shutdown(socket, SHUT_RDWR);
        return error;
    }
    const auto result = static_cast<std::int32_t>(littleEndian32(answer.data()));
    if (result != 0)
        return result;
    if (needed == ReplySize::Whole && answer.size() < kAnswerHeader + replyBytes)
        return EPROTO;
    distribute(answer, reply);
    return 0;
}

} // namespace System::ManagerSocket
