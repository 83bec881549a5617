#pragma once

#include <array>
#include <string>
#include <string_view>

#include "devices/Device.h"

namespace headunit {

/// The general-purpose lines of the unit. Each is a node that holds one character, the line's level: a
/// reader gets it, a writer replaces it. Levels may be looked at and set from any one thread while the
/// daemon runs; the daemon's own writes show at once.
class GpioPorts : public Device {
public:
    struct Port {
        std::string_view name;
        char initialLevel;
    };

    static constexpr char kFolder[] = "/dev/nvgpio/";

    /// In the order of the port numbers on the wire.
    static const std::array<Port, 21> kPorts;

    std::string_view name() const override { return "gpio ports"; }
    void install(UnitTree& tree) override;

    /// What the port's node holds, '0' or '1' unless somebody wrote something else. Throws UnitError
    /// when the node is gone, is empty, or the device is not installed.
    char level(std::string_view port) const;

    /// Throws UnitError when the device is not installed or the node cannot be written.
    void setLevel(std::string_view port, char level);

private:
    std::string node(std::string_view port) const;

    UnitTree* m_tree = nullptr;
};

} // namespace headunit
