#pragma once

#include <string>
#include <vector>

#include "core/AbstractListener.h"

/// Accepts stations over TCP on 127.0.0.1:15051 and has each connection served by a thread of its own.
/// Any number of connections at once; connection threads are not tracked and end when their peer closes.
class NetListener : public AbstractListener {
public:
    static constexpr int kPort = 15051;

    /// Makes the thread that starts connections, too: without it nobody would be served. False, with
    /// nobody listening, when one of the two could not be made.
    bool start() override;

    /// The accept loop, for whoever has been started. Where the port is taken, or descriptors or memory
    /// have run out, it pauses and tries again until it can serve.
    void threadLoop(System::Thread* self) override;

    /// There is no single station to talk to: these do nothing.
    void asyncSend(std::string& text) override;
    void asyncSend(std::vector<unsigned char>& frame) override;
    int getDeviceListNumber() override { return 0; }

    /// Starts a connection thread; `arg` carries the descriptor itself, which then belongs to that
    /// thread. Where a thread cannot be made it tries again until there is one. Returns what destroying
    /// the thread's attributes returned: 0, or an error number.
    static int startAnonymousThread(void* arg);

private:
    void acceptFrom(int socket);
    void stop();
};

/// A connection thread's body; `arg` as above. Returns null when the connection has ended.
void* runAnonthread(void* arg);
