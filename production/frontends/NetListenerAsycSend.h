#pragma once

#include <string>
#include <vector>

#include "core/AbstractListener.h"

/// Sends the lines of a connection's requests to where they came from. The dispatcher uses it while a
/// request runs and the connection's thread afterwards, never both at once.
class NetListenerAsycSend : public AbstractListener {
public:
    /// The socket stays the caller's.
    explicit NetListenerAsycSend(int socket);

    void threadLoop(System::Thread*) override {}

    /// Frames `text` as STX, "#", text, ETX, LF and sends as much of it as the connection takes now; the
    /// rest is kept for `flush`. Never waits for the peer, so that one that does not read its answers
    /// holds up nobody else.
    void asyncSend(std::string& text) override;
    /// Binary frames cannot travel on this link: dropped.
    void asyncSend(std::vector<unsigned char>& frame) override;
    int getDeviceListNumber() override { return 0; }

    /// Waits until everything has been sent, or the connection has failed.
    void flush();

private:
    void sendPending(int flags);

    int m_socket;
    std::string m_pending;
};
