#pragma once

#include <array>
#include <string>
#include <utility>

#include "devices/Device.h"

namespace headunit {

/// The version files that the unit's software images carry.
/// That of the image names the variant of the hardware.
class SoftwareVersions : public Device {
public:
    /// The variants that there are.
    static constexpr std::array<const char*, 5> kVariants = {"PAG", "G11", "G22", "G24", "G21"};

    static constexpr char kImageVersionFile[] = "/mnt/app/img_ver.txt";
    static constexpr char kApplicationVersionFile[] = "/mnt/app/version_info.txt";
    static constexpr char kApplicationVersion[] =
        "component: application\n"
        "version: 11.02.03\n"
        "built: 2012-11-05 17:42:10\n";
    static constexpr char kBootImageVersionFile[] = "/ifs/version_info.txt";
    static constexpr char kBootImageVersion[] =
        "component: boot image\n"
        "version: 4.17\n"
        "built: 2012-10-22 09:15:36\n";

    /// One of the variants; when it is empty, what the unit's files say already, else the first one.
    explicit SoftwareVersions(std::string variant = "") : m_variant(std::move(variant)) {}

    std::string_view name() const override { return "software versions"; }
    void install(UnitTree& tree) override;

private:
    std::string m_variant;
};

/// The content of the image's version file.
std::string imageVersion(const std::string& variant);

} // namespace headunit
