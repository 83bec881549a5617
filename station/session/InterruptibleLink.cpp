#include "session/InterruptibleLink.h"

namespace station {

namespace {

// How long an interruption may go unnoticed.
constexpr Seconds kBetweenLooks{0.1};

} // namespace

void InterruptibleLink::send(std::string_view bytes, const Deadline& deadline) {
    const bool isWanted = m_interruption.signal() == 0;
    m_link->send(bytes, isWanted ? deadline : Deadline::earlier(deadline, Deadline::after(kGrace)));
}

std::optional<std::string> InterruptibleLink::receiveBy(const Deadline& moment) {
    for (;;) {
        auto bytes = m_link->receiveBy(Deadline::earlier(moment, Deadline::after(kBetweenLooks)));
        if (bytes || moment.expired())
            return bytes;
        const int signal = m_interruption.signal();
        if (signal == 0)
            continue;
        if (!m_end)
            m_end = Deadline::after(kGrace);
        if (m_end->expired())
            throw Interrupted(signal);
    }
}

} // namespace station
