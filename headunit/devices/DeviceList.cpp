#include "devices/DeviceList.h"

#include "devices/BoardIdentity.h"
#include "devices/SoftwareVersions.h"
#include "devices/StoredPictures.h"
#include "devices/UnitTools.h"
#include "unit/UnitError.h"

namespace headunit {

DeviceList allDevices(const std::string& variant) {
    DeviceList devices;
    devices.push_back(std::make_unique<BoardIdentity>());
    devices.push_back(std::make_unique<SoftwareVersions>(variant));
    devices.push_back(std::make_unique<StoredPictureFiles>());
    devices.push_back(std::make_unique<UnitTools>());
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
