#include "frontends/NetConnection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <utility>

#include "core/Handler.h"
#include "frontends/CommandLexer.h"
#include "frontends/CommandSender.h"
#include "platform/Memory.h"
#include "platform/Uninterrupted.h"

namespace {

constexpr std::size_t kReadBytes = 4096;

} // namespace

NetConnection::NetConnection(System::Descriptor socket) : m_socket(std::move(socket)) {
    // An "Info" line and the answer behind it are two writes; the second must not wait until the peer's
    // system gets round to acknowledging the first.
    const int on = 1;
    ::setsockopt(m_socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void NetConnection::serve() {
    while (readLine())
        answer();
}

bool NetConnection::readLine() {
    m_assembler.reset();
    // On the stack, where an idle connection's buffer costs no memory until something arrives.
    char bytes[kReadBytes];
    for (;;) {
        const ssize_t count =
            System::uninterrupted([&] { return ::read(m_socket.get(), bytes, sizeof bytes); });
        if (count <= 0)
            return false;
        const auto size = static_cast<std::size_t>(count);
        if (m_detector.feed(bytes, size) == HttpRequestDetector::HttpRequest)
            return false;
        if (m_assembler.append(bytes, size))
            return true;
    }
}

void NetConnection::answer() {
    const bool isLong = m_assembler.line().size() > CommandLexer::kLongLine;
    CommandSender sender(m_socket.get());
    sender.answer(Handler::getInstance()->handleCommand(CommandLexer::scan(m_assembler), &sender));
    if (isLong)
        System::returnFreedMemory();
}
