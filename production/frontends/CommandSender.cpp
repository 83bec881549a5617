#include "frontends/CommandSender.h"

#include <sys/socket.h>

#include <string_view>
#include <utility>

#include "wire/Line.h"

namespace {

// As much as a socket takes at once; more would keep a
// dispatcher busy for as long as a fast peer reads on.
constexpr std::size_t kSentAtOnce = std::size_t{64} << 10;

} // namespace

void CommandSender::asyncSend(std::string& text) {
    if (m_pending.empty())
        m_pending = wire::answerLine(std::move(text));
    else
        wire::appendAnswer(m_pending, text);
    m_sent += send(std::string_view(m_pending).substr(m_sent, kSentAtOnce), MSG_DONTWAIT);
}

void CommandSender::answer(std::string text) {
    send(std::string_view(m_pending).substr(m_sent), 0);
    m_pending = wire::answerLine(std::move(text));
    send(m_pending, 0);
}
