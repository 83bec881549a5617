#include "control/PortControl.h"

#include "control/ControlWords.h"
#include "unit/FormatText.h"

namespace headunit {
namespace {

using NodeState = GpioPorts::NodeState;
using Order = void (*)(GpioPorts& ports, const std::string& port);

constexpr char kNoPort[] = "'%s' is not a port";
constexpr Choice<Order> kOrders[] = {
    {"0", [](GpioPorts& ports, const std::string& port) { ports.setLevel(port, '0'); }},
    {"1", [](GpioPorts& ports, const std::string& port) { ports.setLevel(port, '1'); }},
    {"unreadable",
     [](GpioPorts& ports, const std::string& port) { ports.setState(port, NodeState::broken); }},
    {"gone", [](GpioPorts& ports, const std::string& port) { ports.setState(port, NodeState::gone); }},
    {"back", [](GpioPorts& ports, const std::string& port) { ports.setState(port, NodeState::whole); }},
};

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

std::string tellPorts(UnitDevices& devices, const ControlArguments& /*arguments*/) {
    std::vector<std::string> lines;
    lines.reserve(GpioPorts::kPorts.size());
    for (const GpioPorts::Port& port : GpioPorts::kPorts)
        lines.push_back(
            formatText("%s %s", port.name.data(), describe(devices.ports, port.name).c_str()));
    return listed(lines, "\n");
}

std::string setPort(UnitDevices& devices, const ControlArguments& arguments) {
    const std::string& port = arguments[0];
    if (!GpioPorts::isPort(port))
        throw unitError(kNoPort, port.c_str());
    chosen(kOrders, arguments[1])(devices.ports, port);
    return {};
}

} // namespace

ControlRows portControl() {
    return {
        {"ports", 0, 0, "", tellPorts},
        {"port", 2, 2, "NAME 0|1|unreadable|gone|back", setPort},
    };
}

} // namespace headunit
