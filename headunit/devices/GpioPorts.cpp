#include "devices/GpioPorts.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr mode_t kFolderMode = 0755;

const GpioPorts::Port* findPort(std::string_view name) {
    return std::find_if(GpioPorts::kPorts.begin(), GpioPorts::kPorts.end(),
                        [&](const GpioPorts::Port& port) { return port.name == name; });
}

} // namespace

// The rest state of a unit on the bench: powered, nothing plugged in, resets released, no fault.
const std::array<GpioPorts::Port, 21> GpioPorts::kPorts = {{
    {"ioc_kru_irq", '0'},   {"ipod_accessory", '0'}, {"ipod_detect", '0'}, {"usb_pwr_1", '1'},
    {"usb_pwr_0", '1'},     {"nad_on_off", '0'},     {"nad_reset", '0'},   {"nad_status", '0'},
    {"usb_oc_detect", '1'},                  // low when too much current flows
    {"vd1_int", '1'},                        // low when the video decoder has something to say
    {"wlan_reset", '1'},    {"sd_cd1", '1'}, // low when a card is in
    {"sd_wp1", '0'},        {"sd_ena1", '1'},        {"sd_cd2", '1'},      {"sd_wp2", '0'},
    {"sd_ena2", '1'},       {"cvbs_reset", '1'},     {"gpio_po4", '0'},    {"gpio_po3", '0'},
    {"bt_wlan_pd", '1'},
}};

bool GpioPorts::isPort(std::string_view name) {
    return findPort(name) != kPorts.end();
}

void GpioPorts::install(UnitTree& tree) {
    for (const Port& port : kPorts)
        tree.createFile(kFolder + std::string(port.name), std::string(1, port.initialLevel));
    m_tree = &tree;
}

char GpioPorts::level(std::string_view port) const {
    const std::string path = node(port);
    const std::string content = readHostFile(path);
    if (content.empty())
        throw UnitError(path + " is empty");
    return content.front();
}

char GpioPorts::levelOr(std::string_view port, char otherwise) const {
    try {
        return level(port);
    } catch (const UnitError&) {
        return otherwise;
    }
}

void GpioPorts::setLevel(std::string_view port, char level) {
    overwriteHostFile(node(port), std::string(1, level));
}

GpioPorts::NodeState GpioPorts::state(std::string_view port) const {
    struct stat status {};
    if (::stat(node(port).c_str(), &status) != 0)
        return NodeState::gone;
    return S_ISDIR(status.st_mode) ? NodeState::broken : NodeState::whole;
}

void GpioPorts::setState(std::string_view port, NodeState wanted) {
    const std::string path = node(port);
    const NodeState before = state(port);
    if (before == wanted)
        return;
    if (before == NodeState::whole)
        m_kept[std::string(port)] = levelOr(port, findPort(port)->initialLevel);
    const int removed = before == NodeState::broken ? ::rmdir(path.c_str()) : ::unlink(path.c_str());
    if (removed != 0 && errno != ENOENT)
        throw systemError("cannot remove " + path, errno);
    if (wanted == NodeState::broken && ::mkdir(path.c_str(), kFolderMode) != 0)
        throw systemError("cannot make " + path, errno);
    if (wanted != NodeState::whole)
        return;
    const auto kept = m_kept.find(port);
    const char level = kept == m_kept.end() ? findPort(port)->initialLevel : kept->second;
    m_tree->createFile(kFolder + std::string(port), std::string(1, level));
}

std::string GpioPorts::node(std::string_view port) const {
    if (m_tree == nullptr)
        throw UnitError("the gpio ports are not installed");
    return m_tree->hostPath(kFolder + std::string(port));
}

} // namespace headunit
