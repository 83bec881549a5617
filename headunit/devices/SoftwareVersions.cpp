#include "devices/SoftwareVersions.h"

#include <unistd.h>

namespace headunit {

void SoftwareVersions::install(UnitTree& tree) {
    if (!m_variant.empty()) // somebody wants this one, whatever was there before
        ::unlink(tree.claim(kImageVersionFile).c_str());
    tree.createFile(kImageVersionFile, imageVersion(m_variant.empty() ? kVariants.front() : m_variant));
    tree.createFile(kApplicationVersionFile, kApplicationVersion);
    tree.createFile(kBootImageVersionFile, kBootImageVersion);
}

std::string imageVersion(const std::string& variant) {
    return "HU-ECE-HIGH " + variant + " 11.02.03\n";
}

} // namespace headunit
