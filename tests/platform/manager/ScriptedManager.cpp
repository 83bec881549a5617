#include "manager/ScriptedManager.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "platform/Descriptors.h"
#include "support/Waiting.h"

namespace {

namespace fs = std::filesystem;

constexpr int kBacklog = 8;
constexpr std::size_t kLongestRequest = 1 << 20;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

System::Descriptor listenAt(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw std::runtime_error(path + " is too long");
    path.copy(address.sun_path, path.size());
    System::Descriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket ||
        ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.get(), kBacklog) != 0)
        fail(path);
    return socket;
}

} // namespace

ScriptedManager::ScriptedManager(std::string path) : ScriptedManager(path, path) {}

ScriptedManager::ScriptedManager(const std::string& path, const std::string& ownName) : m_path(path) {
    fs::remove_all(path);
    if (!System::openPipe(m_wake, m_waker))
        fail("cannot make a pipe");
    m_listening = listenAt(ownName);
    if (ownName != path)
        fs::rename(ownName, path);
    m_thread = std::thread([this] { serve(); });
}

ScriptedManager::~ScriptedManager() {
    m_waker.reset();
    m_thread.join();
    if (m_listening)
        leavePath();
    EXPECT_TRUE(m_script.empty()) << m_script.size() << " requests never came";
}

void ScriptedManager::willAnswer(std::int32_t result, const Bytes& bytes) {
    willSend(joined({littleEndian({static_cast<std::uint32_t>(result)}), bytes}));
}

void ScriptedManager::willSend(const Bytes& packet) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script.emplace_back([this, packet] { send(packet); });
}

void ScriptedManager::willSayNothing() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script.emplace_back([] {});
}

void ScriptedManager::willHangUp() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script.emplace_back([this] { m_connections.pop_back(); });
}

void ScriptedManager::willVanish() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script.emplace_back([this] {
        leavePath();
        m_connections.clear();
    });
}

void ScriptedManager::say(const Bytes& packet) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    send(packet);
}

void ScriptedManager::hangUp() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    // The thread hears of it and forgets the connection.
    if (!m_connections.empty())
        ::shutdown(m_connections.back().get(), SHUT_RDWR);
}

std::vector<ScriptedManager::Bytes> ScriptedManager::requests() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

ScriptedManager::Bytes ScriptedManager::lastRequest() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests.empty() ? Bytes{} : m_requests.back();
}

bool ScriptedManager::hasHeard(std::size_t requests) const {
    return eventually([&] { return this->requests().size() == requests; });
}

int ScriptedManager::connections() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    accept();
    EXPECT_EQ(::write(m_waker.get(), "", 1), 1);
    return m_accepted;
}

bool ScriptedManager::isLeftAlone() const {
    return eventually([this] {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_connections.empty();
    });
}

void ScriptedManager::serve() {
    for (;;) {
        std::vector<pollfd> events = {{m_wake.get(), POLLIN, 0}};
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            events.push_back({m_listening.get(), POLLIN, 0});
            for (const System::Descriptor& connection : m_connections)
                events.push_back({connection.get(), POLLIN, 0});
        }
        if (::poll(events.data(), events.size(), -1) < 0)
            continue;
        char woken = 0;
        if (events[0].revents != 0 && ::read(m_wake.get(), &woken, 1) == 0)
            return;
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (events[1].revents != 0)
            accept();
        for (std::size_t at = events.size(); at-- > 2;)
            if (events[at].revents != 0)
                receive(at - 2);
    }
}

void ScriptedManager::accept() {
    while (System::Descriptor connection{::accept4(m_listening.get(), nullptr, nullptr, SOCK_CLOEXEC)}) {
        m_connections.push_back(std::move(connection));
        ++m_accepted;
    }
}

void ScriptedManager::receive(std::size_t connection) {
    if (connection >= m_connections.size())
        return;
    Bytes request(kLongestRequest);
    const ssize_t count =
        ::recv(m_connections[connection].get(), request.data(), request.size(), MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    // Who speaks counts as who connected last.
    System::Descriptor speaker = std::move(m_connections[connection]);
    m_connections.erase(m_connections.begin() + static_cast<std::ptrdiff_t>(connection));
    if (count <= 0)
        return;
    m_connections.push_back(std::move(speaker));
    request.resize(static_cast<std::size_t>(count));
    m_requests.push_back(std::move(request));
    if (m_script.empty()) {
        ADD_FAILURE() << "nobody told how to answer " << ::testing::PrintToString(m_requests.back());
        return;
    }
    const Step step = std::move(m_script.front());
    m_script.pop_front();
    step();
}

void ScriptedManager::send(const Bytes& packet) {
    // Who has gone need not hear it.
    if (!m_connections.empty())
        ::send(m_connections.back().get(), packet.data(), packet.size(), MSG_NOSIGNAL);
}

void ScriptedManager::leavePath() {
    m_listening.reset();
    fs::remove(m_path);
}

ScriptedManager::Bytes littleEndian(const std::vector<std::uint32_t>& numbers) {
    ScriptedManager::Bytes bytes;
    for (const std::uint32_t number : numbers)
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<unsigned char>(number >> shift));
    return bytes;
}

ScriptedManager::Bytes joined(const std::vector<ScriptedManager::Bytes>& parts) {
    ScriptedManager::Bytes bytes;
    for (const ScriptedManager::Bytes& part : parts)
        bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

ScriptedManager::Bytes counting(std::size_t count, unsigned char first) {
    ScriptedManager::Bytes bytes(count);
    for (unsigned char& byte : bytes)
        byte = first++;
    return bytes;
}
