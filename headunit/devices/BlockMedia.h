#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "devices/BlockMedium.h"

namespace headunit {

/// The media of a unit, used as one of them is. The hard
/// disks are not there unless somebody asks for them.
class BlockMedia {
public:
    /// What the user calls them, in the order of all().
    static constexpr std::array<std::string_view, 6> kNames = {"sda0",   "sdb0",   "cd0",
                                                               "umass0", "mnand0", "fs0"};

    /// Installs each and inserts those that belong to every unit, unless they were taken out of this one
    /// before, and those named in `wanted`. Throws UnitError, also for a name that is no medium's.
    void install(UnitTree& tree, const std::vector<std::string>& wanted);

    std::array<BlockMedium, 6>& all() { return m_media; }

    /// Throws UnitError when there is none with this name.
    BlockMedium& named(const std::string& name);

private:
    static constexpr std::size_t kOptional = 2; ///< the first ones

    std::array<BlockMedium, 6> m_media = {{{kNames[0], "/dev/sda0", "HU DISK A"},
                                           {kNames[1], "/dev/sdb0", "HU DISK B"},
                                           {kNames[2], "/dev/cd0", "HU DISC"},
                                           {kNames[3], "/dev/umass/umass0", "HU STICK"},
                                           {kNames[4], "/dev/mnand0", "HU CARD"},
                                           {kNames[5], "/dev/fs0", "HU FLASH"}}};
};

} // namespace headunit
