#pragma once

#include "devices/Device.h"

namespace headunit {

/// What the board says about itself: its revision, one hexadecimal number, and its serial number.
class BoardIdentity : public Device {
public:
    static constexpr char kRevisionNode[] = "/dev/nvsku/rev";
    static constexpr char kRevision[] = "1A\n";
    static constexpr char kSerialNumberNode[] = "/dev/nvsku/serial_num";
    static constexpr char kSerialNumber[] = "0323814000427\n";

    std::string_view name() const override { return "board identity"; }
    void install(UnitTree& tree) override;
};

} // namespace headunit
