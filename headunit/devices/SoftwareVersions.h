#pragma once

#include "devices/Device.h"

namespace headunit {

/// The version files that the unit's software images carry.
class SoftwareVersions : public Device {
public:
    static constexpr char kImageVersionFile[] = "/mnt/app/img_ver.txt";
    static constexpr char kImageVersion[] = "HU-ECE-HIGH 11.02.03\n";
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

    std::string_view name() const override { return "software versions"; }
    void install(UnitTree& tree) override;
};

} // namespace headunit
