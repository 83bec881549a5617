#pragma once

#include <string_view>

#include "unit/UnitTree.h"

namespace headunit {

/// One simulated device of the unit. Made and installed on the main thread before the daemon starts and
/// destroyed after it has ended. What is looked at or changed in between says in its own header which
/// threads may do so. The tree outlives the device.
class Device {
public:
    virtual ~Device() = default;

    /// For messages to the user: "board identity".
    virtual std::string_view name() const = 0;

    /// Puts the device's nodes into the tree. Called once. Throws UnitError.
    virtual void install(UnitTree& tree) = 0;
};

} // namespace headunit
