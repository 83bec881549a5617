#include "devices/ManagerNode.h"

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
class ManagerNode::Connection : public EventSource {
public:
    Connection(ManagerNode& node, System::Descriptor socket)
        : EventSource(node.m_loop), m_node(node), m_socket(std::move(socket)) {}

    ~Connection() override { m_node.m_requests.left(this); }

    bool hasEnded() const { return !m_socket; }

    int descriptor() const override { return m_socket.get(); }

    short awaitedEvents() const override {
        if (!m_asked)
            return POLLIN | POLLRDHUP;
        return m_answer.empty() || m_due ? 0 : POLLOUT;
    }

    void onEvents(short events) override {
        if (hasEnded())
            return;
        if (!m_asked && (events & POLLIN) != 0)
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

    /// The answer to a request that is open. It goes out in the next round.
    void setAnswer(std::string packet) {
        if (hasEnded() || !m_asked || !m_answer.empty())
            return;
        m_answer = std::move(packet);
        if (m_node.m_late.count() > 0)
            m_due = EventClock::now() + m_node.m_late;
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
        m_asked = true;
        if (auto answer = m_node.m_requests.requested(this, packet))
            setAnswer(std::move(*answer));
    }

    void sendAnswer() {
        const ssize_t count = ::send(m_socket.get(), m_answer.data(), m_answer.size(), MSG_NOSIGNAL);
        if (count < 0 && wouldBlock(errno))
            return;
        if (count < 0)
            return end();
        m_answer.clear();
        m_asked = false;
    }

    void end() {
        m_socket.reset();
        m_due.reset();
        m_node.m_requests.left(this);
        m_node.m_sweep.start(EventClock::now());
    }

    ManagerNode& m_node;
    System::Descriptor m_socket;
    bool m_asked = false;
    std::string m_answer; ///< not sent yet; an answer is never empty
    std::optional<EventClock::time_point> m_due;
};

ManagerNode::ManagerNode(EventLoop& loop, ManagerRequests& requests)
    : EventSource(loop), m_loop(loop), m_requests(requests), m_sweep(loop, [this] { sweep(); }) {}

ManagerNode::~ManagerNode() {
    goAway();
}

void ManagerNode::install(UnitTree& tree, const std::string& unitPath) {
    m_path = tree.claim(unitPath);
    m_folder = openFolder(std::filesystem::path(m_path).parent_path().string());
    if (!m_folder)
        throw systemError("cannot open the folder of " + m_path, errno);
    comeBack();
}

void ManagerNode::goAway() {
    if (!isThere())
        return;
    removeSocket(m_folder.get(), nameOf(m_path));
    m_listener.reset();
    m_connections.clear();
}

void ManagerNode::comeBack() {
    if (isThere())
        return;
    m_listener = listenIn(m_folder.get(), nameOf(m_path), SOCK_SEQPACKET);
    if (m_listener)
        return;
    const int error = errno;
    if (error == EADDRINUSE)
        throw UnitError(m_path + " exists and is no socket; it is left as it is");
    throw systemError("cannot listen at " + m_path, error);
}

void ManagerNode::answer(Client client, std::string packet) {
    const auto connection = std::find_if(m_connections.begin(), m_connections.end(),
                                         [&](const auto& known) { return known.get() == client; });
    if (connection != m_connections.end())
        (*connection)->setAnswer(std::move(packet));
}

short ManagerNode::awaitedEvents() const {
    return m_connections.size() < kMostConnections ? POLLIN : 0;
}

void ManagerNode::onEvents(short /*events*/) {
    System::Descriptor socket(
        ::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (socket)
        m_connections.push_back(std::make_unique<Connection>(*this, std::move(socket)));
}

void ManagerNode::sweep() {
    const auto ended = [](const auto& connection) { return connection->hasEnded(); };
    m_connections.erase(std::remove_if(m_connections.begin(), m_connections.end(), ended),
                        m_connections.end());
}

} // namespace headunit
