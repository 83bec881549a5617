#pragma once

#include <string>
#include <vector>

#include "core/AbstractListener.h"
#include "platform/Descriptor.h"

/// Accepts stations over TCP on 127.0.0.1:15051 and gives each connection a thread of its own. Any
/// number of connections at once; connection threads are not tracked and end when their peer closes.
class NetListener : public AbstractListener {
public:
    static constexpr int kPort = 15051;

    /// The accept loop. Where the port is taken, or descriptors, memory or threads have run out, it
    /// pauses and tries again until it can serve.
    void threadLoop(System::Thread* self) override;

    /// There is no single station to talk to: these do nothing.
    void asyncSend(std::string& text) override;
    void asyncSend(std::vector<unsigned char>& frame) override;
    int getDeviceListNumber() override { return 0; }

    /// Starts a connection thread; `arg` carries the descriptor itself, which then belongs to that
    /// thread. Returns 0, or the error number that the thread could not be made with; the caller keeps
    /// the descriptor then.
    static int startAnonymousThread(void* arg);

private:
    bool listenOn(int socket);
    void serve(System::Descriptor connection);
    void stop();

    bool m_bound = false;
};

/// A connection thread's body; `arg` as above. Returns null when the connection has ended.
void* runAnonthread(void* arg);
