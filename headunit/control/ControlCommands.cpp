#include "control/ControlCommands.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <sstream>

#include "unit/UnitError.h"

namespace headunit {

struct ControlCommands::Command {
    std::string_view word;
    Answer (ControlCommands::*handler)(const Words& words);
    std::size_t arguments;
    const char* usage;
};

struct ControlCommands::ModemKey {
    std::string_view key;
    Answer (ControlCommands::*handler)(const std::string& value);
};

namespace {

using Answer = ControlCommands::Answer;

constexpr char kLines[] = "one of station, loopback, modem, receiver";
constexpr int kLongestLate = 600000; // milliseconds

Answer refused(const std::string& why) {
    return {false, why};
}

Answer refusedValue(const std::string& value, const std::string& wanted) {
    return refused("'" + value + "' is not " + wanted);
}

std::optional<int> wholeNumber(const std::string& text) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end)
        return std::nullopt;
    return number;
}

std::optional<double> decimalNumber(const std::string& text) {
    if (text.empty() || text.find_first_not_of("+-.0123456789") != std::string::npos)
        return std::nullopt; // nothing that strtod takes beyond decimals
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size())
        return std::nullopt;
    return number;
}

std::optional<bool> onOrOff(const std::string& text) {
    if (text != "on" && text != "off")
        return std::nullopt;
    return text == "on";
}

} // namespace

const ControlCommands::Command ControlCommands::kCommands[] = {
    {"unplug", &ControlCommands::unplug, 1, "unplug LINE"},
    {"plug", &ControlCommands::plug, 1, "plug LINE"},
    {"state", &ControlCommands::state, 0, "state"},
    {"position", &ControlCommands::position, 2, "position LATITUDE LONGITUDE"},
    {"modem", &ControlCommands::modem, 2, "modem signal|registration|pin|late|silent VALUE"},
    {"loopback", &ControlCommands::loopback, 1, "loopback on|off"},
    {"receiver", &ControlCommands::receiver, 1, "receiver on|off"},
};

const ControlCommands::ModemKey ControlCommands::kModemKeys[] = {
    {"signal", &ControlCommands::setSignal}, {"registration", &ControlCommands::setRegistration},
    {"pin", &ControlCommands::setCard},      {"late", &ControlCommands::setLate},
    {"silent", &ControlCommands::setSilent},
};

Answer ControlCommands::run(std::string_view line) {
    std::istringstream stream{std::string(line)};
    Words words{std::istream_iterator<std::string>(stream), {}};
    if (words.empty())
        return refused("there is no word");
    const auto command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                      [&](const Command& known) { return known.word == words.front(); });
    if (command == std::end(kCommands))
        return refusedValue(words.front(),
                            "one of unplug, plug, state, position, modem, loopback, receiver");
    words.erase(words.begin());
    if (words.size() != command->arguments)
        return refused(std::string("usage: ") + command->usage);
    try {
        return (this->*command->handler)(words);
    } catch (const UnitError& error) {
        return refused(error.what());
    }
}

Answer ControlCommands::unplug(const Words& words) {
    SerialLine* line = m_lines.find(words.front());
    if (line == nullptr)
        return refusedValue(words.front(), kLines);
    if (!line->isPlugged())
        return refused(words.front() + " is unplugged already");
    line->unplug();
    return {};
}

Answer ControlCommands::plug(const Words& words) {
    SerialLine* line = m_lines.find(words.front());
    if (line == nullptr)
        return refusedValue(words.front(), kLines);
    if (line->isPlugged())
        return refused(words.front() + " is plugged in already");
    line->plug();
    return {};
}

Answer ControlCommands::state(const Words& /*words*/) {
    std::ostringstream text;
    for (const SerialLine* line : m_lines.all())
        text << (text.tellp() > 0 ? "\n" : "") << line->name() << ' ' << line->unitPath() << ' '
             << (line->isPlugged() ? "plugged" : "unplugged") << " from-unit " << line->bytesFromUnit()
             << " to-unit " << line->bytesToUnit();
    return {true, text.str()};
}

Answer ControlCommands::position(const Words& words) {
    const auto latitude = decimalNumber(words[0]);
    const auto longitude = decimalNumber(words[1]);
    if (!latitude || !longitude || !isOnEarth({*latitude, *longitude}))
        return refusedValue(words[0] + " " + words[1],
                            "a latitude within 90 and a longitude within 180 degrees");
    m_lines.receiver.setPosition({*latitude, *longitude});
    return {};
}

Answer ControlCommands::modem(const Words& words) {
    const auto key = std::find_if(std::begin(kModemKeys), std::end(kModemKeys),
                                  [&](const ModemKey& known) { return known.key == words[0]; });
    if (key == std::end(kModemKeys))
        return refusedValue(words[0], "one of signal, registration, pin, late, silent");
    return (this->*key->handler)(words[1]);
}

Answer ControlCommands::setSignal(const std::string& value) {
    const auto strength = wholeNumber(value);
    if (!strength || !m_lines.modem.commands().setSignal(*strength))
        return refusedValue(value, "a signal strength: 0 to 31, or 99 for unknown");
    return {};
}

Answer ControlCommands::setRegistration(const std::string& value) {
    const auto state = wholeNumber(value);
    if (!state || !m_lines.modem.commands().setRegistration(*state))
        return refusedValue(value, "a registration state: 0 to 5");
    m_lines.modem.say(m_lines.modem.commands().registrationReport());
    return {};
}

Answer ControlCommands::setCard(const std::string& value) {
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

Answer ControlCommands::setLate(const std::string& value) {
    const auto late = wholeNumber(value);
    if (!late || *late < 0 || *late > kLongestLate)
        return refusedValue(value, "a number of milliseconds: 0 to " + std::to_string(kLongestLate));
    m_lines.modem.setLate(std::chrono::milliseconds(*late));
    return {};
}

Answer ControlCommands::setSilent(const std::string& value) {
    const auto silent = onOrOff(value);
    if (!silent)
        return refusedValue(value, "on or off");
    m_lines.modem.setSilent(*silent);
    return {};
}

Answer ControlCommands::loopback(const Words& words) {
    const auto connected = onOrOff(words.front());
    if (!connected)
        return refusedValue(words.front(), "on or off");
    m_lines.loopback.setConnected(*connected);
    return {};
}

Answer ControlCommands::receiver(const Words& words) {
    const auto on = onOrOff(words.front());
    if (!on)
        return refusedValue(words.front(), "on or off");
    m_lines.receiver.setOn(*on);
    return {};
}

} // namespace headunit
