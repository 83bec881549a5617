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

ControlCommands::Answer ControlCommands::state(const Words& /*words*/) {
    std::ostringstream text;
    for (const SerialLine* line : m_lines.all())
        text << line->name() << ' ' << line->unitPath() << ' '
             << (line->isPlugged() ? "plugged" : "unplugged") << " from-unit " << line->bytesFromUnit()
             << " to-unit " << line->bytesToUnit() << '\n';
    I2cBus& bus = m_devices.i2c.bus();
    text << "i2c " << I2cManager::kNode << (m_devices.i2c.isThere() ? " on" : " off") << " speed "
         << bus.speed() << (bus.isHeld() ? " held" : " free") << " requests " << bus.requests()
         << " refused " << bus.refused() << '\n';
    for (const I2cBus::Chip& chip : bus.chips())
        text << chip.name << " 0x" << hexText(static_cast<std::uint8_t>(chip.address))
             << (chip.present ? " on " : " off ") << chip.slave.description() << '\n';
    for (const BlockMedium& medium : m_devices.media.all())
        text << medium.name() << ' ' << medium.unitPath()
             << (medium.isInserted() ? " inserted" : " removed") << '\n';
    text << "audio " << AudioDriver::kProcess << ' ' << nameOf(m_devices.audio.state());
    return {true, text.str()};
}

} // namespace headunit
