#pragma once

#include <array>
#include <map>
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

    enum class NodeState {
        whole,
        broken, ///< a folder stands there: it opens for reading, but nothing can be read or written
        gone
    };

    static constexpr char kFolder[] = "/dev/nvgpio/";

    /// In the order of the port numbers on the wire.
    static const std::array<Port, 21> kPorts;

    static bool isPort(std::string_view name);

    std::string_view name() const override { return "gpio ports"; }
    void install(UnitTree& tree) override;

    /// What the port's node holds, '0' or '1' unless somebody wrote something else. Throws UnitError
    /// when the node is gone, is empty, or the device is not installed.
    char level(std::string_view port) const;

    /// The same, and `otherwise` instead of an error.
    char levelOr(std::string_view port, char otherwise) const;

    /// Throws UnitError when the device is not installed or the node cannot be written.
    void setLevel(std::string_view port, char level);

    NodeState state(std::string_view port) const;

    /// Makes the node whole, broken or gone. A node that becomes whole again has the level that it had.
    /// Throws UnitError when that cannot be done.
    void setState(std::string_view port, NodeState wanted);

private:
    std::string node(std::string_view port) const;

    UnitTree* m_tree = nullptr;
    std::map<std::string, char, std::less<>> m_kept; ///< levels of the nodes that are not whole
};

} // namespace headunit
