#include "control/ControlServer.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace headunit {
namespace {

constexpr std::size_t kMostConnections = 16;
constexpr std::size_t kLongestLine = 512;
constexpr std::chrono::seconds kLongestConnection{5};

bool wouldBlock(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

/// One user: reads a line, writes the answer, ends.
class ControlServer::Connection : public EventSource {
public:
    Connection(EventLoop& loop, System::Descriptor socket, ControlCommands& commands, Timer& sweep)
        : EventSource(loop), m_socket(std::move(socket)), m_commands(commands), m_sweep(sweep) {}

    bool hasEnded() const { return !m_socket; }

    int descriptor() const override { return m_socket.get(); }
    short awaitedEvents() const override { return m_answer.empty() ? POLLIN : POLLOUT; }

    void onEvents(short /*events*/) override {
        if (!hasEnded() && m_answer.empty())
            readLine();
        if (!hasEnded() && !m_answer.empty())
            writeAnswer();
    }

    std::optional<EventClock::time_point> due() const override { return m_due; }
    void onDue() override { end(); }

private:
    void readLine() {
        std::array<char, kLongestLine> block;
        const ssize_t count = ::read(m_socket.get(), block.data(), block.size());
        if (count < 0 && wouldBlock(errno))
            return;
        if (count <= 0)
            return end();
        m_line.append(block.data(), static_cast<std::size_t>(count));
        const std::size_t lineEnd = m_line.find('\n');
        if (lineEnd == std::string::npos) {
            // The rest of a line that is too long is read as well: a user who is still sending when the
            // connection closes would not get the answer.
            m_line.resize(std::min(m_line.size(), kLongestLine + 1));
            return;
        }
        ControlAnswer answer{false, "the line is too long"};
        if (lineEnd <= kLongestLine)
            answer = m_commands.run(std::string_view(m_line).substr(0, lineEnd));
        m_answer = answer.done ? kControlDone : kControlRefused;
        if (!answer.text.empty())
            m_answer += answer.text + "\n";
    }

    void writeAnswer() {
        const ssize_t count = ::send(m_socket.get(), m_answer.data(), m_answer.size(), MSG_NOSIGNAL);
        if (count < 0 && wouldBlock(errno))
            return;
        if (count < 0 || static_cast<std::size_t>(count) == m_answer.size())
            return end();
        m_answer.erase(0, static_cast<std::size_t>(count));
    }

    void end() {
        m_socket.reset();
        m_due.reset();
        m_sweep.start(EventClock::now());
    }

    System::Descriptor m_socket;
    ControlCommands& m_commands;
    Timer& m_sweep;
    std::optional<EventClock::time_point> m_due = EventClock::now() + kLongestConnection;
    std::string m_line;
    std::string m_answer;
};

ControlServer::ControlServer(EventLoop& loop, UnitTree& tree, ControlCommands& commands)
    : EventSource(loop),
      m_loop(loop),
      m_commands(commands),
      m_path(tree.claim(std::string(kControlFolder) + "/" + kControlName)),
      m_socket(m_path),
      m_sweep(loop, [this] { sweep(); }) {}

ControlServer::~ControlServer() {
    ::unlink(m_path.c_str());
}

short ControlServer::awaitedEvents() const {
    return m_connections.size() < kMostConnections ? POLLIN : 0;
}

void ControlServer::onEvents(short /*events*/) {
    System::Descriptor socket(
        ::accept4(m_socket.listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (socket)
        m_connections.push_back(
            std::make_unique<Connection>(m_loop, std::move(socket), m_commands, m_sweep));
}

void ControlServer::sweep() {
    const auto ended = [](const auto& connection) { return connection->hasEnded(); };
    m_connections.erase(std::remove_if(m_connections.begin(), m_connections.end(), ended),
                        m_connections.end());
}

} // namespace headunit
