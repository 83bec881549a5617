#include "frontends/NetListener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <exception>

#include "core/Diagnostics.h"
#include "core/StringFormat.h"
#include "frontends/NetConnection.h"
#include "platform/Descriptors.h"
#include "runtime/ThreadAttributes.h"

namespace {

// Stations that come in a rush wait here to be accepted. What does not fit, some systems drop although
// the station believes itself connected, so a handful is not enough.
constexpr int kBacklog = 1024;
// Between attempts to get what the system has run out of: short for whoever waits, rare for the
// processor.
constexpr int kRetryPauseMs = 50;

constexpr char kInvalidSocket[] = "Invalid socket descriptor %d";
constexpr char kNoSocketOptions[] = "Could not set socket options, socket descriptor: %d";
constexpr char kStopping[] = "Stopping NetListener";

void pauseBeforeRetry() {
    ::poll(nullptr, 0, kRetryPauseMs);
}

bool isOnlyThisConnection(int error) {
    return error == EINTR || error == ECONNABORTED;
}

void* toArgument(int descriptor) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor));
}

} // namespace

void NetListener::threadLoop(System::Thread*) {
    setState(Started, false);
    setState(Running, false);
    const System::Descriptor socket = System::openTcpSocket();
    if (!socket) {
        printDiagnostic(string_format(kInvalidSocket, socket.get()));
        stop();
        return;
    }
    const int on = 1;
    if (::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0) {
        printDiagnostic(string_format(kNoSocketOptions, socket.get()));
        stop();
        return;
    }
    bool listening = false;
    while (getState() < Stopping) {
        if (!listening) {
            listening = listenOn(socket.get());
            if (!listening)
                pauseBeforeRetry();
            continue;
        }
        System::Descriptor connection = System::acceptConnection(socket.get());
        if (connection)
            serve(std::move(connection));
        else if (!isOnlyThisConnection(errno))
            pauseBeforeRetry();
    }
    setState(Dead, false);
}

void NetListener::stop() {
    printDiagnostic(kStopping);
    setState(Dead, false);
}

bool NetListener::listenOn(int socket) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (!m_bound)
        m_bound = ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    return m_bound && ::listen(socket, kBacklog) == 0;
}

/// Holds on to the connection until there is a thread for it: its station waits, and is not turned away.
void NetListener::serve(System::Descriptor connection) {
    while (startAnonymousThread(toArgument(connection.get())) != 0) {
        pauseBeforeRetry();
        if (getState() > Connected)
            return;
    }
    connection.release();
}

int NetListener::startAnonymousThread(void* arg) {
    const System::ThreadAttributes attributes;
    if (!attributes.isValid())
        return ENOMEM;
    pthread_t thread;
    return pthread_create(&thread, attributes.get(), runAnonthread, arg);
}

void NetListener::asyncSend(std::string&) {}

void NetListener::asyncSend(std::vector<unsigned char>&) {}

void* runAnonthread(void* arg) {
    NetConnection connection(System::Descriptor(static_cast<int>(reinterpret_cast<std::intptr_t>(arg))));
    try {
        connection.serve();
    } catch (const std::exception&) {
        // A request that does not fit into memory: its connection ends, the others go on.
    }
    return nullptr;
}
