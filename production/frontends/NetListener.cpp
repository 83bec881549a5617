#include "frontends/NetListener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <exception>
#include <new>
#include <utility>

#include "core/Diagnostics.h"
#include "frontends/ConnectionStarter.h"
#include "frontends/NetConnection.h"
#include "frontends/ScarcityPause.h"
#include "platform/Descriptors.h"
#include "runtime/ThreadAttributes.h"

namespace {

// So few fit, and the system lets the others try again after a second: nothing but accepting may happen
// between one connection and the next.
constexpr int kBacklog = 5;

constexpr char kInvalidSocket[] = "Invalid socket descriptor %d";
constexpr char kNoSocketOptions[] = "Could not set socket options, socket descriptor: %d";
constexpr char kStopping[] = "Stopping NetListener";

bool isOnlyThisConnection(int error) {
    return error == EINTR || error == ECONNABORTED;
}

bool bindToPort(int socket) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(NetListener::kPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool makeThread(const System::ThreadAttributes& attributes, void* arg) {
    pthread_t thread;
    return attributes.isValid() && pthread_create(&thread, attributes.get(), runAnonthread, arg) == 0;
}

} // namespace

bool NetListener::start() {
    try {
        ConnectionStarter& starter = ConnectionStarter::getInstance();
        return (starter.isValid() || starter.start()) && AbstractListener::start();
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void NetListener::threadLoop(System::Thread*) {
    setState(Started, false);
    setState(Running, false);
    const System::Descriptor socket = System::openTcpSocket();
    if (!socket) {
        printDiagnostic(kInvalidSocket, socket.get());
        stop();
        return;
    }
    const int on = 1;
    if (::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0) {
        printDiagnostic(kNoSocketOptions, socket.get());
        stop();
        return;
    }
    acceptFrom(socket.get());
    setState(Dead, false);
}

void NetListener::stop() {
    printDiagnostic(kStopping);
    setState(Dead, false);
}

void NetListener::acceptFrom(int socket) {
    while (getState() < Stopping && !bindToPort(socket))
        pauseForScarcity();
    while (getState() < Stopping && ::listen(socket, kBacklog) != 0)
        pauseForScarcity();
    while (getState() < Stopping) {
        System::Descriptor connection = System::acceptConnection(socket);
        if (connection)
            ConnectionStarter::getInstance().add(std::move(connection));
        else if (!isOnlyThisConnection(errno))
            pauseForScarcity();
    }
}

int NetListener::startAnonymousThread(void* arg) {
    for (;;) {
        System::ThreadAttributes attributes;
        if (makeThread(attributes, arg))
            return attributes.destroy();
        pauseForScarcity();
    }
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
