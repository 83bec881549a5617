#include "serial/TerminalEnd.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <utility>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr std::size_t kOutgoingCapacity = 64 * 1024;
constexpr std::size_t kBlock = 4096; // as much as a terminal gives at once

} // namespace

TerminalEnd::TerminalEnd(EventLoop& loop, Reader reader)
    : EventSource(loop), m_reader(std::move(reader)), m_outgoing(kOutgoingCapacity) {}

void TerminalEnd::open() {
    m_terminal.emplace();
}

void TerminalEnd::close() {
    m_terminal.reset();
    m_outgoing.clear();
}

std::size_t TerminalEnd::room() const {
    return isOpen() ? m_outgoing.room() : 0;
}

bool TerminalEnd::send(std::string_view bytes) {
    return isOpen() && m_outgoing.push(bytes);
}

std::size_t TerminalEnd::unread() const {
    return isOpen() ? m_outgoing.waiting().size() + m_terminal->unread() : 0;
}

void TerminalEnd::discardReceived() {
    if (isOpen())
        m_terminal->discardWritten();
}

int TerminalEnd::descriptor() const {
    return isOpen() ? m_terminal->descriptor() : -1;
}

short TerminalEnd::awaitedEvents() const {
    const int reading = m_reader.room() > 0 ? POLLIN : 0;
    const int writing = m_outgoing.empty() ? 0 : POLLOUT;
    return static_cast<short>(reading | writing);
}

void TerminalEnd::onEvents(short events) {
    if (isOpen() && (events & POLLIN) != 0)
        takeIn();
    if (isOpen() && (events & POLLOUT) != 0)
        passOn();
    if (!isOpen() || (events & POLLHUP) == 0)
        return;
    try {
        m_terminal->revive();
    } catch (const UnitError& error) {
        std::cerr << "headunit: " << path() << ": " << error.what() << '\n';
        close(); // a dead end would be reported again and again
    }
}

void TerminalEnd::takeIn() {
    std::array<char, kBlock> block;
    const std::size_t most = std::min(m_reader.room(), block.size());
    if (most == 0)
        return;
    const ssize_t count = ::read(m_terminal->descriptor(), block.data(), most);
    if (count <= 0)
        return; // nothing there after all: the next round tells
    m_received += static_cast<std::uint64_t>(count);
    m_reader.received({block.data(), static_cast<std::size_t>(count)});
}

void TerminalEnd::passOn() {
    const std::string_view waiting = m_outgoing.waiting();
    if (waiting.empty())
        return;
    const ssize_t count = ::write(m_terminal->descriptor(), waiting.data(), waiting.size());
    if (count <= 0)
        return;
    m_sent += static_cast<std::uint64_t>(count);
    m_outgoing.drop(static_cast<std::size_t>(count));
}

} // namespace headunit
