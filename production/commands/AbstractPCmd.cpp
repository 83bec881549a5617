#include "commands/AbstractPCmd.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/Node.h"

namespace {

constexpr char kFolder[] = "/dev/nvgpio";

constexpr char kInvalidPort[] = "Invalid Port: %d. Allowed port range is: [0,%d]";
constexpr char kNoOutput[] = "Port %d is not an Output Port";
constexpr char kNotSupported[] = "Port %d is not supported yet";
constexpr char kAbsent[] = "Port %d does not exist on this Hardware";
constexpr char kCannotOpen[] = "Open Port %d results in Error %d: %s";
constexpr char kCannotWrite[] = "Writing to Port %d results in Error %d: %s";
constexpr char kUnknownValue[] = "Unknown value to write: %c";

int writeOne(int node, char level) {
    const ssize_t written = System::writeNode(node, &level, 1);
    if (written == 1)
        return 0;
    return written < 0 ? errno : EIO;
}

} // namespace

AbstractPCmd::AbstractPCmd(char id, std::string name) : AbstractCmd(id, std::move(name), true) {
    using Info = PortInfo;
    m_ports = {
        {"ioc_kru_irq", Info::Output}, {"ipod_accessory", Info::Input}, {"ipod_detect", Info::Input},
        {"usb_pwr_1", Info::Output},   {"usb_pwr_0", Info::Output},     {"nad_on_off", Info::Output},
        {"nad_reset", Info::Output},   {"nad_status", Info::Input},     {"usb_oc_detect", Info::Input},
        {"vd1_int", Info::Input},      {"wlan_reset", Info::Output},    {"sd_cd1", Info::Input},
        {"sd_wp1", Info::Input},       {"sd_ena1", Info::Output},       {"sd_cd2", Info::Input},
        {"sd_wp2", Info::Input},       {"sd_ena2", Info::Output},       {"cvbs_reset", Info::Output},
        {"gpio_po4", Info::Output},    {"gpio_po3", Info::Input},       {"bt_wlan_pd", Info::Output},
    };
}

std::string AbstractPCmd::nodeOf(unsigned char port) const {
    return std::string(kFolder) + "/" + m_ports[port].name;
}

Answer AbstractPCmd::checkRange(unsigned char port) const {
    if (port < m_ports.size())
        return nullptr;
    return failure(kOutOfRange, kInvalidPort, port, static_cast<int>(m_ports.size()) - 1);
}

Answer AbstractPCmd::checkOutput(unsigned char port) const {
    if (Answer refusal = checkRange(port))
        return refusal;
    if (m_ports[port].type != PortInfo::Output)
        return failure(kNotAnOutput, kNoOutput, port);
    if (m_ports[port].name.empty())
        return failure(kNotAvailable, kNotSupported, port);
    return nullptr;
}

Answer AbstractPCmd::writeLevel(unsigned char port, char level) const {
    const System::Descriptor node = System::openNode(nodeOf(port).c_str(), O_WRONLY);
    if (!node) {
        const int error = errno;
        if (error == ENOENT)
            return failure(kNotAvailable, kAbsent, port);
        return failure(kAccessFailed, kCannotOpen, port, error, std::strerror(error));
    }
    if (level != '0' && level != '1')
        return failure(kWriteFailed, kUnknownValue, level);
    if (const int error = writeOne(node.get(), level); error != 0)
        return failure(kWriteFailed, kCannotWrite, port, error, std::strerror(error));
    return success();
}
