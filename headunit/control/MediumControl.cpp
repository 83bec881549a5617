#include "control/MediumControl.h"

namespace headunit {
namespace {

std::string insert(UnitDevices& devices, const ControlArguments& arguments) {
    devices.media.named(arguments[0]).insert();
    return {};
}

std::string remove(UnitDevices& devices, const ControlArguments& arguments) {
    devices.media.named(arguments[0]).remove();
    return {};
}

} // namespace

ControlRows mediumControl() {
    return {
        {"insert", 1, 1, "MEDIUM", insert},
        {"remove", 1, 1, "MEDIUM", remove},
    };
}

} // namespace headunit
