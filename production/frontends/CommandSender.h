#pragma once

#include <cstddef>
#include <string>

#include "frontends/NetListenerAsycSend.h"

/// Sends one command's lines to the station that it came from. The dispatcher uses it while the command
/// runs and the connection's thread afterwards, never both at once.
class CommandSender : public NetListenerAsycSend {
public:
    using NetListenerAsycSend::NetListenerAsycSend;

    using NetListenerAsycSend::asyncSend;
    /// Sends of the framed text what the connection takes now, a little at most; the rest is kept for
    /// `answer`. Neither waits for the peer nor keeps company with a fast one: whoever reads its
    /// answers, or does not, holds up nobody else. The text may be used up.
    void asyncSend(std::string& text) override;

    /// Sends what was kept and then `text` in its frame, which is made in the text's place. Waits until
    /// everything has been sent, or the connection has failed.
    void answer(std::string text);

private:
    std::string m_pending;
    std::size_t m_sent = 0; // of m_pending
};
