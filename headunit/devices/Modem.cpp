#include "devices/Modem.h"

#include <utility>

#include "devices/SerialLineIdentities.h"

namespace headunit {
namespace {

constexpr std::size_t kBlock = 256;        // bytes taken from the unit at once
constexpr std::size_t kEchoReserve = 1024; // kept free of answers, so that a block's echo always fits
constexpr std::size_t kMostAnswers = 16;   // waiting ones, before it stops listening
constexpr std::chrono::milliseconds kUntilReaderReads{20};

} // namespace

Modem::Modem(EventLoop& loop)
    : SerialLine(loop, kModemLine), m_nextAnswer(loop, [this] { sendDueAnswers(); }) {}

void Modem::setSilent(bool silent) {
    m_silent = silent;
    forget();
}

void Modem::say(std::string text) {
    if (m_silent || !isPlugged() || text.empty())
        return;
    m_answers.push_back({EventClock::now() + m_late, std::move(text)});
    sendDueAnswers();
}

std::size_t Modem::room() const {
    if (m_silent)
        return kBlock;
    return m_answers.size() < kMostAnswers && unitEnd().room() >= kEchoReserve ? kBlock : 0;
}

void Modem::received(std::string_view bytes) {
    if (m_silent)
        return;
    for (const char byte : bytes) {
        ModemCommands::Reaction reaction = m_commands.take(byte);
        unitEnd().send(reaction.echo);
        say(std::move(reaction.answer));
    }
}

void Modem::forget() {
    m_answers.clear();
    m_nextAnswer.stop();
    m_commands.forgetLine();
}

void Modem::sendDueAnswers() {
    m_nextAnswer.stop();
    const EventClock::time_point now = EventClock::now();
    while (!m_answers.empty() && m_answers.front().due <= now) {
        const std::string& text = m_answers.front().text;
        if (unitEnd().room() < text.size() + kEchoReserve)
            return m_nextAnswer.start(now + kUntilReaderReads);
        unitEnd().send(text);
        m_answers.pop_front();
    }
    if (!m_answers.empty())
        m_nextAnswer.start(m_answers.front().due);
}

} // namespace headunit
