#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "devices/BlockMedium.h"

namespace headunit {

/// The media of a unit, used as one of them is. The hard disks are not there unless somebody asks for
/// them.
class BlockMedia {
public:
    /// Installs each and inserts those that belong to every unit, unless they were taken out of this one
    /// before, and those named in `wanted`. Throws UnitError, also for a name that is no medium's.
    void install(UnitTree& tree, const std::vector<std::string>& wanted);

    std::array<BlockMedium, 6>& all() { return m_media; }

    /// Null when there is none with this name.
    BlockMedium* find(std::string_view name);

private:
    static constexpr std::size_t kOptional = 2; ///< the first ones

    std::array<BlockMedium, 6> m_media = {{{"sda0", "/dev/sda0", "HU DISK A"},
                                           {"sdb0", "/dev/sdb0", "HU DISK B"},
                                           {"cd0", "/dev/cd0", "HU DISC"},
                                           {"umass0", "/dev/umass/umass0", "HU STICK"},
                                           {"mnand0", "/dev/mnand0", "HU CARD"},
                                           {"fs0", "/dev/fs0", "HU FLASH"}}};
};

} // namespace headunit
