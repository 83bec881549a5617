#pragma once

#include <string>
#include <vector>

#include "core/AbstractListener.h"

/// Sends the lines of a connection's requests to where they came from. The dispatcher uses it while a
/// request runs and the connection's thread otherwise, never both at once.
class NetListenerAsycSend : public AbstractListener {
public:
    /// The socket stays the caller's.
    explicit NetListenerAsycSend(int socket);

    void threadLoop(System::Thread*) override {}

    /// Frames `text` as STX, "#", text, ETX, LF and sends of it what the connection takes now, a little
    /// at most; the rest is kept for `answer`. Neither waits for the peer nor keeps company with a fast
    /// one: whoever reads its answers, or does not, holds up nobody else.
    void asyncSend(std::string& text) override;
    /// Binary frames cannot travel on this link: dropped.
    void asyncSend(std::vector<unsigned char>& frame) override;
    int getDeviceListNumber() override { return 0; }

    /// Sends what was kept and then `text` in its frame, which is made in the text's place. Waits until
    /// everything has been sent, or the connection has failed.
    void answer(std::string text);

private:
    void sendAll();
    void sendSome(std::size_t limit, int flags);

    int m_socket;
    std::string m_pending;
    std::size_t m_sent = 0; // of m_pending
};
