#include "devices/GpioPorts.h"

#include "unit/UnitError.h"

namespace headunit {

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

void GpioPorts::setLevel(std::string_view port, char level) {
    overwriteHostFile(node(port), std::string(1, level));
}

std::string GpioPorts::node(std::string_view port) const {
    if (m_tree == nullptr)
        throw UnitError("the gpio ports are not installed");
    return m_tree->hostPath(kFolder + std::string(port));
}

} // namespace headunit
