#include "devices/I2cManager.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "unit/LocalSocket.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr std::size_t kMostConnections = 64;

bool wouldBlock(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

std::string nameOf(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

} // namespace

/// One client: a request, its answer, the next request.
class I2cManager::Connection : public EventSource {
public:
    Connection(I2cManager& manager, System::Descriptor socket)
        : EventSource(manager.m_loop), m_manager(manager), m_socket(std::move(socket)) {}

    ~Connection() override { m_manager.m_bus.left(this); }

    bool hasEnded() const { return !m_socket; }

    int descriptor() const override { return m_socket.get(); }

    short awaitedEvents() const override {
        if (m_answer.empty())
            return POLLIN | POLLRDHUP;
        return m_due ? 0 : POLLOUT;
    }

    void onEvents(short events) override {
        if (hasEnded())
            return;
        if (m_answer.empty() && (events & POLLIN) != 0)
            takeRequest(events);
        else if ((events & (POLLHUP | POLLERR)) != 0)
            end();
        if (!hasEnded() && !m_answer.empty() && !m_due)
            sendAnswer();
    }

    std::optional<EventClock::time_point> due() const override { return m_due; }

    void onDue() override {
        m_due.reset();
        sendAnswer();
    }

private:
    void takeRequest(short events) {
        const ssize_t size = ::recv(m_socket.get(), nullptr, 0, MSG_PEEK | MSG_TRUNC);
        std::string packet(static_cast<std::size_t>(std::max<ssize_t>(size, 0)), '\0');
        const ssize_t count = ::recv(m_socket.get(), packet.data(), packet.size(), 0);
        if (count < 0 && wouldBlock(errno))
            return;
        // An empty packet looks like the end, but nobody has hung up then.
        if (count < 0 || (count == 0 && (events & (POLLHUP | POLLRDHUP)) != 0))
            return end();
        packet.resize(static_cast<std::size_t>(count));
        m_answer = m_manager.m_bus.answer(this, packet);
        if (m_manager.m_late.count() > 0)
            m_due = EventClock::now() + m_manager.m_late;
    }

    void sendAnswer() {
        const ssize_t count = ::send(m_socket.get(), m_answer.data(), m_answer.size(), MSG_NOSIGNAL);
        if (count < 0 && wouldBlock(errno))
            return;
        if (count < 0)
            return end();
        m_answer.clear();
    }

    void end() {
        m_socket.reset();
        m_due.reset();
        m_manager.m_bus.left(this);
        m_manager.m_sweep.start(EventClock::now());
    }

    I2cManager& m_manager;
    System::Descriptor m_socket;
    std::string m_answer; ///< not sent yet
    std::optional<EventClock::time_point> m_due;
};

I2cManager::I2cManager(EventLoop& loop)
    : EventSource(loop), m_loop(loop), m_sweep(loop, [this] { sweep(); }) {}

I2cManager::~I2cManager() {
    goAway();
}

void I2cManager::install(UnitTree& tree) {
    m_path = tree.claim(kNode);
    m_folder = openFolder(std::filesystem::path(m_path).parent_path().string());
    if (!m_folder)
        throw systemError("cannot open the folder of " + m_path, errno);
    comeBack();
}

void I2cManager::goAway() {
    if (!isThere())
        return;
    removeSocket(m_folder.get(), nameOf(m_path));
    m_listener.reset();
    m_connections.clear();
}

void I2cManager::comeBack() {
    if (isThere())
        return;
    m_listener = listenIn(m_folder.get(), nameOf(m_path), SOCK_SEQPACKET);
    if (m_listener)
        return;
    const int error = errno;
    if (error == EADDRINUSE)
        throw UnitError("" + m_path + " exists and is no socket; it is left as it is");
    throw systemError("cannot listen at " + m_path, error);
}

short I2cManager::awaitedEvents() const {
    return m_connections.size() < kMostConnections ? POLLIN : 0;
}

void I2cManager::onEvents(short /*events*/) {
    System::Descriptor socket(
        ::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (socket)
        m_connections.push_back(std::make_unique<Connection>(*this, std::move(socket)));
}

void I2cManager::sweep() {
    const auto ended = [](const auto& connection) { return connection->hasEnded(); };
    m_connections.erase(std::remove_if(m_connections.begin(), m_connections.end(), ended),
                        m_connections.end());
}

} // namespace headunit
