#include "devices/PositionReceiver.h"

#include <chrono>

#include "devices/SerialLineIdentities.h"

namespace headunit {
namespace {

constexpr std::chrono::seconds kPeriod{1};
constexpr std::size_t kMostUnread =
    512; // bytes, what an input buffer keeps for a reader that comes late

} // namespace

PositionReceiver::PositionReceiver(EventLoop& loop)
    : SerialLine(loop, kReceiverLine), m_nextSentences(loop, [this] { saySentences(); }) {}

void PositionReceiver::setOn(bool on) {
    if (on == m_on)
        return;
    m_on = on;
    schedule();
}

void PositionReceiver::schedule() {
    m_nextSentences.stop();
    if (m_on && isPlugged())
        m_nextSentences.start(EventClock::now() + kPeriod);
}

void PositionReceiver::saySentences() {
    schedule();
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    const std::string sentences = positionSentences(m_position, now);
    if (unitEnd().unread() + sentences.size() <= kMostUnread)
        unitEnd().send(sentences);
}

} // namespace headunit
