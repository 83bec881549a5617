#pragma once

#include <string_view>

#include "control/ControlAnswer.h"
#include "devices/UnitDevices.h"

namespace headunit {

/// What a user may ask of a running unit: one line of words in, one answer out. For the event loop's
/// thread; nothing here blocks. The devices outlive it.
class ControlCommands {
public:
    explicit ControlCommands(UnitDevices& devices) : m_devices(devices) {}

    /// Runs one line of words that blanks separate, as ControlTable has them.
    ControlAnswer run(std::string_view line);

private:
    UnitDevices& m_devices;
};

} // namespace headunit
