#include "measuring/FloorServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "measuring/Connection.h"
#include "measuring/Failure.h"

namespace Measuring {

namespace {

constexpr int kBacklog = 128;
constexpr std::size_t kReadSize = 4096;

class Worker {
public:
    /// A thread that waits for its results. Shared with the worker, which may still be notifying when
    /// the thread has seen its result and has gone.
    struct Caller {
        std::mutex lock;
        std::condition_variable ready;
        bool done = false;
    };

    Worker() : m_thread([this] { run(); }) {}

    /// Has the worker do its job for the caller and waits for that.
    void perform(const std::shared_ptr<Caller>& caller) {
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            m_jobs.push_back(caller);
        }
        m_arrived.notify_one();
        std::unique_lock<std::mutex> guard(caller->lock);
        caller->ready.wait(guard, [&caller] { return caller->done; });
        caller->done = false;
    }

private:
    [[noreturn]] void run() {
        for (;;) {
            const std::shared_ptr<Caller> caller = take();
            {
                const std::lock_guard<std::mutex> guard(caller->lock);
                caller->done = true;
            }
            caller->ready.notify_one();
        }
    }

    std::shared_ptr<Caller> take() {
        std::unique_lock<std::mutex> guard(m_lock);
        m_arrived.wait(guard, [this] { return !m_jobs.empty(); });
        std::shared_ptr<Caller> caller = std::move(m_jobs.front());
        m_jobs.pop_front();
        return caller;
    }

    std::mutex m_lock;
    std::condition_variable m_arrived;
    std::deque<std::shared_ptr<Caller>> m_jobs;
    std::thread m_thread;
};

/// One request line at a time from a connection, whatever its length.
class LineReader {
public:
    explicit LineReader(int connection) : m_connection(connection), m_line(kReadSize) {}

    /// Whether there was another line before the end of the connection.
    bool next() {
        if (m_line.size() > kReadSize)
            m_line = std::vector<char>(kReadSize);
        std::size_t received = 0;
        while (!endsLine(m_line.data(), received)) {
            if (m_line.size() < received + kReadSize)
                m_line.resize(received + kReadSize);
            const ssize_t count = ::read(m_connection, m_line.data() + received, kReadSize);
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return false;
            received += static_cast<std::size_t>(count);
        }
        return true;
    }

private:
    int m_connection;
    std::vector<char> m_line;
};

void serveConnection(System::Descriptor connection, const std::string& answer,
                     const std::function<void()>& handle) {
    LineReader reader(connection.get());
    while (reader.next()) {
        handle();
        writeAll(connection.get(), answer);
    }
}

std::function<void()> handlingBy(Worker* worker) {
    if (worker == nullptr)
        return [] {};
    return [worker, caller = std::make_shared<Worker::Caller>()] { worker->perform(caller); };
}

void serve(int listener, Handling handling, const std::string& answer) {
    const auto worker = handling == Handling::HandedOver ? std::make_unique<Worker>() : nullptr;
    for (;;) {
        System::Descriptor connection(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
        if (!connection)
            continue;
        const int on = 1;
        ::setsockopt(connection.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        std::thread(serveConnection, std::move(connection), answer, handlingBy(worker.get())).detach();
    }
}

System::Descriptor listenAnywhere() {
    System::Descriptor listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!listener)
        throw failure("cannot create a socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener.get(), kBacklog) != 0)
        throw failure("cannot listen");
    return listener;
}

std::uint16_t portOf(const System::Descriptor& listener) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (::getsockname(listener.get(), reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw failure("cannot tell the port");
    return ntohs(address.sin_port);
}

} // namespace

FloorServer::FloorServer(Handling handling, const std::string& answer)
    : m_listener(listenAnywhere()),
      m_port(portOf(m_listener)),
      m_process(ChildProcess::running([&] { serve(m_listener.get(), handling, answer); })) {}

} // namespace Measuring
