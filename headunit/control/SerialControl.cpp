#include <algorithm>
#include <iterator>
#include <utility>

#include "control/ControlCommands.h"
#include "control/ControlWords.h"

namespace headunit {

struct ControlCommands::ModemKey {
    std::string_view key;
    Answer (ControlCommands::*handler)(const std::string& value);
};

namespace {

constexpr char kLines[] = "one of station, loopback, modem, receiver";

} // namespace

const ControlCommands::ModemKey ControlCommands::kModemKeys[] = {
    {"signal", &ControlCommands::setSignal}, {"registration", &ControlCommands::setRegistration},
    {"pin", &ControlCommands::setCard},      {"late", &ControlCommands::setLate},
    {"silent", &ControlCommands::setSilent},
};

ControlCommands::Answer ControlCommands::unplug(const Words& words) {
    SerialLine* line = m_lines.find(words.front());
    if (line == nullptr)
        return refusedValue(words.front(), kLines);
    if (!line->isPlugged())
        return refused(words.front() + " is unplugged already");
    line->unplug();
    return {};
}

ControlCommands::Answer ControlCommands::plug(const Words& words) {
    SerialLine* line = m_lines.find(words.front());
    if (line == nullptr)
        return refusedValue(words.front(), kLines);
    if (line->isPlugged())
        return refused(words.front() + " is plugged in already");
    line->plug();
    return {};
}

ControlCommands::Answer ControlCommands::position(const Words& words) {
    const auto latitude = decimalNumber(words[0]);
    const auto longitude = decimalNumber(words[1]);
    if (!latitude || !longitude || !isOnEarth({*latitude, *longitude}))
        return refusedValue(words[0] + " " + words[1],
                            "a latitude within 90 and a longitude within 180 degrees");
    m_lines.receiver.setPosition({*latitude, *longitude});
    return {};
}

ControlCommands::Answer ControlCommands::modem(const Words& words) {
    const auto key = std::find_if(std::begin(kModemKeys), std::end(kModemKeys),
                                  [&](const ModemKey& known) { return known.key == words[0]; });
    if (key == std::end(kModemKeys))
        return refusedValue(words[0], "one of signal, registration, pin, late, silent");
    return (this->*key->handler)(words[1]);
}

ControlCommands::Answer ControlCommands::setSignal(const std::string& value) {
    const auto strength = wholeNumber(value);
    if (!strength || !m_lines.modem.commands().setSignal(*strength))
        return refusedValue(value, "a signal strength: 0 to 31, or 99 for unknown");
    return {};
}

ControlCommands::Answer ControlCommands::setRegistration(const std::string& value) {
    const auto state = wholeNumber(value);
    if (!state || !m_lines.modem.commands().setRegistration(*state))
        return refusedValue(value, "a registration state: 0 to 5");
    m_lines.modem.say(m_lines.modem.commands().registrationReport());
    return {};
}

ControlCommands::Answer ControlCommands::setCard(const std::string& value) {
    using Card = ModemCommands::Card;
    constexpr std::pair<std::string_view, Card> kCards[] = {{"ready", Card::ready},
                                                            {"wanted", Card::wantsPin},
                                                            {"blocked", Card::blocked},
                                                            {"absent", Card::absent}};
    const auto* const card = std::find_if(std::begin(kCards), std::end(kCards),
                                          [&](const auto& known) { return known.first == value; });
    if (card == std::end(kCards))
        return refusedValue(value, "one of ready, wanted, blocked, absent");
    m_lines.modem.commands().setCard(card->second);
    return {};
}

ControlCommands::Answer ControlCommands::setLate(const std::string& value) {
    const auto late = lateness(value);
    if (!late)
        return refusedLateness(value);
    m_lines.modem.setLate(*late);
    return {};
}

ControlCommands::Answer ControlCommands::setSilent(const std::string& value) {
    const auto silent = onOrOff(value);
    if (!silent)
        return refusedValue(value, "on or off");
    m_lines.modem.setSilent(*silent);
    return {};
}

ControlCommands::Answer ControlCommands::loopback(const Words& words) {
    const auto connected = onOrOff(words.front());
    if (!connected)
        return refusedValue(words.front(), "on or off");
    m_lines.loopback.setConnected(*connected);
    return {};
}

ControlCommands::Answer ControlCommands::receiver(const Words& words) {
    const auto on = onOrOff(words.front());
    if (!on)
        return refusedValue(words.front(), "on or off");
    m_lines.receiver.setOn(*on);
    return {};
}

} // namespace headunit
