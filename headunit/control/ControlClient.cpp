#include "control/ControlClient.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>

#include "control/ControlSocket.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

/// False when the peer is gone, which reading tells more about.
bool sendAll(int socket, const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::send(socket, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR)
            return false;
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

std::string receiveAll(int socket) {
    std::string text;
    std::array<char, 4096> block;
    for (;;) {
        const ssize_t count = ::recv(socket, block.data(), block.size(), 0);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return text;
        text.append(block.data(), static_cast<std::size_t>(count));
    }
}

bool takePrefix(std::string& text, std::string_view prefix) {
    if (text.compare(0, prefix.size(), prefix) != 0)
        return false;
    text.erase(0, prefix.size());
    return true;
}

} // namespace

std::optional<ControlAnswer> askUnit(const std::string& folder, const std::string& line) {
    const System::Descriptor socket = connectToControl(folder);
    if (!socket)
        return std::nullopt;
    sendAll(socket.get(), line + "\n");
    std::string text = receiveAll(socket.get());
    const bool done = takePrefix(text, kControlDone);
    if (!done && !takePrefix(text, kControlRefused))
        throw UnitError("the unit went away without an answer");
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    return ControlAnswer{done, text};
}

} // namespace headunit
