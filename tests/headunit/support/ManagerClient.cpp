#include "support/ManagerClient.h"

#include <poll.h>
#include <sys/socket.h>

#include "unit/LocalSocket.h"

namespace headunit_test {
namespace {

constexpr int kDeadline = 30000; // milliseconds
constexpr std::size_t kLongestAnswer = 70000;

} // namespace

ManagerClient::ManagerClient(const std::string& folder, const std::string& name)
    : m_socket(headunit::connectIn(headunit::openFolder(folder).get(), name, SOCK_SEQPACKET)) {}

bool ManagerClient::send(const std::string& packet) const {
    return ::send(m_socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(packet.size());
}

bool ManagerClient::hasAnswer(int longest) const {
    pollfd waited{m_socket.get(), POLLIN, 0};
    return ::poll(&waited, 1, longest) == 1;
}

std::optional<std::string> ManagerClient::receive() const {
    std::string packet(kLongestAnswer, '\0');
    if (!hasAnswer(kDeadline))
        return std::nullopt;
    const ssize_t count = ::recv(m_socket.get(), packet.data(), packet.size(), 0);
    if (count <= 0)
        return std::nullopt;
    packet.resize(static_cast<std::size_t>(count));
    return packet;
}

std::optional<std::string> ManagerClient::ask(const std::string& packet) const {
    return send(packet) ? receive() : std::nullopt;
}

} // namespace headunit_test
