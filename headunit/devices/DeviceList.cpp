#include "devices/DeviceList.h"

#include <string>

#include "devices/BoardIdentity.h"
#include "devices/SoftwareVersions.h"
#include "unit/UnitError.h"

namespace headunit {

DeviceList allDevices() {
    DeviceList devices;
    devices.push_back(std::make_unique<BoardIdentity>());
    devices.push_back(std::make_unique<SoftwareVersions>());
    return devices;
}

void install(const DeviceList& devices, UnitTree& tree) {
    for (const auto& device : devices) {
        try {
            device->install(tree);
        } catch (const UnitError& error) {
            throw UnitError(std::string(device->name()) + ": " + error.what());
        }
    }
}

} // namespace headunit
