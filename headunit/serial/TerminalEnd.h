#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "serial/ByteQueue.h"
#include "serial/EventLoop.h"
#include "serial/PseudoTerminal.h"

namespace headunit {

/// The near end of a pseudo-terminal, served by an event loop: hands over what the far end wrote as far
/// as there is room for it, and passes on what is sent as fast as the far end takes it. Neither
/// direction loses a byte: with no room it stops reading, and whoever writes at the far end has to wait.
/// Never blocks. Like every source, used on the loop's thread or while the loop does not run.
class TerminalEnd : public EventSource {
public:
    /// What takes the bytes that the far end wrote.
    struct Reader {
        std::function<std::size_t()> room;              ///< how many bytes may be handed over now
        std::function<void(std::string_view)> received; ///< never more than room() said
    };

    TerminalEnd(EventLoop& loop, Reader reader);

    /// Takes a fresh pseudo-terminal. Throws UnitError.
    void open();

    /// Hangs up. What was sent and not yet taken is discarded.
    void close();

    bool isOpen() const { return m_terminal.has_value(); }

    /// Only while open.
    const std::string& path() const { return m_terminal->path(); }

    /// How many bytes send() takes now; none while closed.
    std::size_t room() const;

    /// Sends all of the bytes, or none and returns false when there is not enough room.
    bool send(std::string_view bytes);

    /// How many bytes wait for a reader at the far end, as far as that can be told.
    std::size_t unread() const;

    /// Discards what the far end wrote and what was not handed over yet.
    void discardReceived();

    std::uint64_t bytesReceived() const { return m_received; }
    std::uint64_t bytesSent() const { return m_sent; } ///< those that the far end took

    int descriptor() const override;
    short awaitedEvents() const override;
    void onEvents(short events) override;

private:
    void takeIn();
    void passOn();

    Reader m_reader;
    std::optional<PseudoTerminal> m_terminal;
    ByteQueue m_outgoing;
    std::uint64_t m_received = 0;
    std::uint64_t m_sent = 0;
};

} // namespace headunit
