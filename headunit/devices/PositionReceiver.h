#pragma once

#include <limits>

#include "devices/PositionSentences.h"
#include "serial/SerialLine.h"

namespace headunit {

/// The satellite receiver: says once a second where it is. Sentences that nobody reads are dropped,
/// whole ones, after the first few. What the unit writes to it is lost. The members beside the line's
/// are for the loop's thread.
class PositionReceiver : public SerialLine {
public:
    explicit PositionReceiver(EventLoop& loop);

    /// From the next sentence on. The position is on the earth.
    void setPosition(const Position& position) { m_position = position; }

    /// On at first; a receiver that is off says nothing.
    void setOn(bool on);

protected:
    std::size_t room() const override { return std::numeric_limits<std::size_t>::max(); }
    void received(std::string_view /*bytes*/) override {}
    void afterPlug() override { schedule(); }
    void afterUnplug() override { schedule(); }

private:
    void schedule();
    void saySentences();

    Timer m_nextSentences; ///< runs while the receiver is on and plugged in
    Position m_position{51.4778, -0.0014};
    bool m_on = true;
};

} // namespace headunit
