#include "devices/UnitDevices.h"

#include <functional>

#include "unit/UnitError.h"

namespace headunit {
namespace {

void installNamed(const std::string& name, const std::function<void()>& installation) {
    try {
        installation();
    } catch (const UnitError& error) {
        throw UnitError(name + ": " + error.what());
    }
}

} // namespace

void UnitDevices::install(UnitTree& tree, const std::vector<std::string>& wantedMedia) {
    lines.install(tree);
    installNamed("i2c bus", [&] { i2c.install(tree); });
    installNamed("wireless chip", [&] { wlan.install(tree); });
    installNamed("bluetooth chip", [&] { bluetooth.install(tree); });
    installNamed("gpio ports", [&] {
        ports.install(tree);
        telephone.start(tree);
    });
    installNamed("block media", [&] { media.install(tree, wantedMedia); });
    installNamed("displays", [&] { displays.install(tree); });
    installNamed("audio driver", [&] { audio.install(tree); });
}

} // namespace headunit
