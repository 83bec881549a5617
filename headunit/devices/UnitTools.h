#pragma once

#include "devices/Device.h"

namespace headunit {

/// The programs and the library that the unit's software has at places of its own: links to those beside
/// headunit. A link of an earlier run gives way, since headunit may have moved; anything else that has
/// the name stays, as a prepared tool.
class UnitTools : public Device {
public:
    std::string_view name() const override { return "tools"; }
    void install(UnitTree& tree) override;
};

} // namespace headunit
