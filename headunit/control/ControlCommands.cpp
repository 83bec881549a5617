#include "control/ControlCommands.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "control/ControlWords.h"
#include "unit/UnitError.h"

namespace headunit {

struct ControlCommands::Command {
    std::string_view word;
    Answer (ControlCommands::*handler)(const Words& words);
    std::size_t leastArguments;
    std::size_t mostArguments;
    const char* usage;
};

const ControlCommands::Command ControlCommands::kCommands[] = {
    {"unplug", &ControlCommands::unplug, 1, 1, "unplug LINE"},
    {"plug", &ControlCommands::plug, 1, 1, "plug LINE"},
    {"state", &ControlCommands::state, 0, 0, "state"},
    {"position", &ControlCommands::position, 2, 2, "position LATITUDE LONGITUDE"},
    {"modem", &ControlCommands::modem, 2, 2, "modem signal|registration|pin|late|silent VALUE"},
    {"loopback", &ControlCommands::loopback, 1, 1, "loopback on|off"},
    {"receiver", &ControlCommands::receiver, 1, 1, "receiver on|off"},
    {"i2c", &ControlCommands::i2c, 1, 3,
     "i2c manager|late|result|chip|temperature|pins|eeprom VALUE [VALUE]"},
    {"wlan", &ControlCommands::wlan, 1, 3, "wlan manager|late|result|refuse|size VALUE [VALUE]"},
    {"bluetooth", &ControlCommands::bluetooth, 1, 3,
     "bluetooth manager|late|silent|fail|send VALUE [VALUE]"},
    {"display", &ControlCommands::display, 1, 3, "display fail|late VALUE [VALUE]"},
    {"insert", &ControlCommands::insert, 1, 1, "insert MEDIUM"},
    {"remove", &ControlCommands::remove, 1, 1, "remove MEDIUM"},
    {"ports", &ControlCommands::ports, 0, 0, "ports"},
    {"port", &ControlCommands::port, 2, 2, "port NAME 0|1|unreadable|gone|back"},
    {"audio", &ControlCommands::audio, 1, 1, "audio active|inactive|stopped"},
};

std::string ControlCommands::allWords() {
    std::string all;
    for (const Command& command : kCommands)
        all.append(all.empty() ? "" : ", ").append(command.word);
    return all;
}

ControlCommands::Answer ControlCommands::run(std::string_view line) {
    std::istringstream stream{std::string(line)};
    Words words{std::istream_iterator<std::string>(stream), {}};
    if (words.empty())
        return refused("there is no word");
    const auto* const command =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [&](const Command& known) { return known.word == words.front(); });
    if (command == std::end(kCommands))
        return refusedValue(words.front(), "one of " + allWords());
    words.erase(words.begin());
    if (words.size() < command->leastArguments || words.size() > command->mostArguments)
        return refused(std::string("usage: ") + command->usage);
    try {
        return (this->*command->handler)(words);
    } catch (const UnitError& error) {
        return refused(error.what());
    }
}

ControlCommands::Answer ControlCommands::runKey(const std::vector<Key>& keys, const Words& words) {
    const auto key =
        std::find_if(keys.begin(), keys.end(), [&](const Key& known) { return known.key == words[0]; });
    if (key == keys.end()) {
        std::string all;
        for (const Key& known : keys)
            all.append(all.empty() ? "one of " : ", ").append(known.key);
        return refusedValue(words[0], all);
    }
    const Words values(words.begin() + 1, words.end());
    if (values.size() < key->leastValues || values.size() > key->mostValues)
        return refused(std::string("usage: ") + key->usage);
    return (this->*key->handler)(values);
}

ControlCommands::Answer ControlCommands::setManager(ManagerNode& node, const std::string& onOff) {
    const auto on = onOrOff(onOff);
    if (!on)
        return refusedValue(onOff, "on or off");
    if (*on)
        node.comeBack();
    else
        node.goAway();
    return {};
}

ControlCommands::Answer ControlCommands::setManagerLate(ManagerNode& node,
                                                        const std::string& milliseconds) {
    const auto late = lateness(milliseconds);
    if (!late)
        return refusedLateness(milliseconds);
    node.setLate(*late);
    return {};
}

} // namespace headunit
