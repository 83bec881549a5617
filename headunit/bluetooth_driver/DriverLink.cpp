#include "DriverLink.h"

#include <sys/socket.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "devices/BluetoothRequests.h"
#include "devices/ManagerPackets.h"
#include "unit/LocalSocket.h"

namespace headunit {
namespace {

constexpr std::size_t kResultSize = 4;

System::Descriptor connectTo(const char* path) {
    const std::filesystem::path node(path);
    const System::Descriptor folder = openFolder(node.parent_path().string());
    return folder ? connectIn(folder.get(), node.filename().string(), SOCK_SEQPACKET)
                  : System::Descriptor();
}

bool sendRequest(int socket, std::uint32_t command, std::string_view sent, std::uint32_t room) {
    std::string packet;
    appendLittleEndian32(packet, command);
    appendLittleEndian32(packet, static_cast<std::uint32_t>(sent.size()));
    appendLittleEndian32(packet, room);
    appendLittleEndian32(packet, 0);
    packet.append(sent);
    ssize_t count;
    do
        count = ::send(socket, packet.data(), packet.size(), MSG_NOSIGNAL);
    while (count < 0 && errno == EINTR);
    return count >= 0;
}

/// Waits for the answer and puts it into `answer`. False, with errno, when none came or it is a refusal.
bool receiveAnswer(int socket, std::string& answer, std::size_t room) {
    answer.resize(kResultSize + room);
    ssize_t count;
    do
        count = ::recv(socket, answer.data(), answer.size(), 0);
    while (count < 0 && errno == EINTR);
    if (count < 0)
        return false;
    answer.resize(static_cast<std::size_t>(count));
    const bool whole = answer.size() >= kResultSize;
    const auto result = whole ? static_cast<std::int32_t>(littleEndian32(answer, 0)) : EPIPE;
    errno = result;
    return result == 0;
}

} // namespace

std::unique_ptr<DriverLink> DriverLink::open(const char* path) {
    System::Descriptor writing = connectTo(path);
    System::Descriptor reading = writing ? connectTo(path) : System::Descriptor();
    std::string answer;
    if (!reading || !sendRequest(writing.get(), BluetoothRequests::kOpen, {}, 0) ||
        !receiveAnswer(writing.get(), answer, 0))
        return nullptr;
    return std::make_unique<DriverLink>(std::move(writing), std::move(reading));
}

bool DriverLink::write(unsigned char type, std::string_view bytes) {
    std::string packet(1, static_cast<char>(type));
    packet.append(bytes);
    std::string answer;
    const std::lock_guard<std::mutex> lock(m_writeLock);
    return sendRequest(m_writing.get(), BluetoothRequests::kWrite, packet, 0) &&
           receiveAnswer(m_writing.get(), answer, 0);
}

std::string_view DriverLink::read() {
    constexpr std::size_t kRoom = BluetoothRequests::kLongestPacket;
    if (!sendRequest(m_reading.get(), BluetoothRequests::kRead, {}, kRoom) ||
        !receiveAnswer(m_reading.get(), m_packet, kRoom))
        return {};
    return std::string_view(m_packet).substr(kResultSize);
}

void DriverLink::hangUp() const {
    ::shutdown(m_writing.get(), SHUT_RDWR);
    ::shutdown(m_reading.get(), SHUT_RDWR);
}

} // namespace headunit
