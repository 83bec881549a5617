#include <algorithm>
#include <utility>

#include "control/ControlCommands.h"
#include "control/ControlWords.h"

namespace headunit {
namespace {

using NodeState = GpioPorts::NodeState;

constexpr char kMedia[] = "one of sda0, sdb0, cd0, umass0, mnand0, fs0";

std::string describe(const GpioPorts& ports, std::string_view port) {
    switch (ports.state(port)) {
        case NodeState::gone:
            return "gone";
        case NodeState::broken:
            return "unreadable";
        default:
            return {ports.levelOr(port, '-')};
    }
}

} // namespace

ControlCommands::Answer ControlCommands::insert(const Words& words) {
    BlockMedium* medium = m_devices.media.find(words.front());
    if (medium == nullptr)
        return refusedValue(words.front(), kMedia);
    medium->insert();
    return {};
}

ControlCommands::Answer ControlCommands::remove(const Words& words) {
    BlockMedium* medium = m_devices.media.find(words.front());
    if (medium == nullptr)
        return refusedValue(words.front(), kMedia);
    medium->remove();
    return {};
}

ControlCommands::Answer ControlCommands::ports(const Words& /*words*/) {
    GpioPorts& all = m_devices.ports;
    std::string text;
    for (const GpioPorts::Port& port : GpioPorts::kPorts)
        text.append(text.empty() ? "" : "\n")
            .append(port.name)
            .append(" ")
            .append(describe(all, port.name));
    return {true, text};
}

ControlCommands::Answer ControlCommands::port(const Words& words) {
    constexpr std::pair<std::string_view, NodeState> kStates[] = {
        {"unreadable", NodeState::broken}, {"gone", NodeState::gone}, {"back", NodeState::whole}};
    if (!GpioPorts::isPort(words[0]))
        return refusedValue(words[0], "a port");
    if (words[1] == "0" || words[1] == "1") {
        m_devices.ports.setLevel(words[0], words[1].front());
        return {};
    }
    const auto* const state = std::find_if(std::begin(kStates), std::end(kStates),
                                           [&](const auto& known) { return known.first == words[1]; });
    if (state == std::end(kStates))
        return refusedValue(words[1], "one of 0, 1, unreadable, gone, back");
    m_devices.ports.setState(words[0], state->second);
    return {};
}

ControlCommands::Answer ControlCommands::audio(const Words& words) {
    AudioDriver& driver = m_devices.audio;
    for (const AudioState state : {AudioState::active, AudioState::inactive, AudioState::stopped})
        if (words.front() == nameOf(state)) {
            driver.ask(state);
            return {};
        }
    return refusedValue(words.front(), "one of active, inactive, stopped");
}

} // namespace headunit
