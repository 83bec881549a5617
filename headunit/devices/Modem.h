#pragma once

#include <chrono>
#include <deque>
#include <string>

#include "devices/ModemCommands.h"
#include "serial/SerialLine.h"

namespace headunit {

/// The command port of the telephone module: echoes what the unit writes and answers its command lines,
/// at once, late, or not at all. The members beside the line's are for the loop's thread.
class Modem : public SerialLine {
public:
    explicit Modem(EventLoop& loop);

    /// What the module answers is its commands' state.
    ModemCommands& commands() { return m_commands; }

    /// From now on answers come so much later than their command line; its echo does not.
    void setLate(std::chrono::milliseconds late) { m_late = late; }

    /// A silent modem takes what it is sent, neither echoes nor answers, and forgets what it had still
    /// to say. Not silent at first.
    void setSilent(bool silent);

    /// Says this unasked, after what it has still to say. No effect when silent, unplugged or empty.
    void say(std::string text);

protected:
    std::size_t room() const override;
    void received(std::string_view bytes) override;
    void afterUnplug() override { forget(); }

private:
    struct Answer {
        EventClock::time_point due;
        std::string text;
    };

    void forget();
    void sendDueAnswers();

    ModemCommands m_commands;
    std::deque<Answer> m_answers; ///< not sent yet, in the order of their commands
    Timer m_nextAnswer;
    std::chrono::milliseconds m_late{0};
    bool m_silent = false;
};

} // namespace headunit
