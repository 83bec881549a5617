#include "support/SocketTable.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "support/Connection.h"

namespace {

int hexadecimal(const std::string& text) {
    return static_cast<int>(std::stoul(text, nullptr, 16));
}

} // namespace

std::vector<TcpSocket> tcpSockets(const std::string& table) {
    std::vector<TcpSocket> sockets;
    std::ifstream file(table);
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        std::istringstream columns(line);
        std::string number, local, remote, state, queues;
        columns >> number >> local >> remote >> state >> queues;
        const std::size_t localColon = local.find(':');
        TcpSocket socket;
        socket.localAddress = local.substr(0, localColon);
        socket.localPort = hexadecimal(local.substr(localColon + 1));
        socket.remotePort = hexadecimal(remote.substr(remote.find(':') + 1));
        socket.state = hexadecimal(state);
        socket.unread = std::stoull(queues.substr(queues.find(':') + 1), nullptr, 16);
        sockets.push_back(socket);
    }
    return sockets;
}

bool isListening() {
    const auto sockets = tcpSockets();
    return std::any_of(sockets.begin(), sockets.end(), [](const TcpSocket& socket) {
        return socket.localPort == Connection::kPort && socket.state == TcpSocket::kListening;
    });
}
