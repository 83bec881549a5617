#pragma once

#include <memory>
#include <string>
#include <vector>

#include "devices/Device.h"

namespace headunit {

using DeviceList = std::vector<std::unique_ptr<Device>>;

/// One of each device of a unit that is only its files, not installed yet, in the order of installation.
/// The unit's hardware is of this variant, see SoftwareVersions.
DeviceList allDevices(const std::string& variant = "");

/// Installs each in turn. Throws UnitError that names the device which failed.
void install(const DeviceList& devices, UnitTree& tree);

} // namespace headunit
