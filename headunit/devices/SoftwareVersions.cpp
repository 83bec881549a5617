#include "devices/SoftwareVersions.h"

namespace headunit {

void SoftwareVersions::install(UnitTree& tree) {
    tree.createFile(kImageVersionFile, kImageVersion);
    tree.createFile(kApplicationVersionFile, kApplicationVersion);
    tree.createFile(kBootImageVersionFile, kBootImageVersion);
}

} // namespace headunit
