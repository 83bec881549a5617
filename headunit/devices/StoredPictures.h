#pragma once

#include <array>
#include <string_view>

#include "devices/Device.h"

namespace headunit {

/// A test picture as the unit stores it.
struct StoredPicture {
    std::string_view name;       ///< without ".gz"
    std::string_view compressed; ///< the gzip file's bytes
};

/// All of them. They were drawn and compressed when headunit was built, by make_stored_pictures.
std::array<StoredPicture, 3> storedPictures();

/// The test pictures among the unit's files.
class StoredPictureFiles : public Device {
public:
    static constexpr char kFolder[] = "/mnt/app/vrk/production/";

    std::string_view name() const override { return "test pictures"; }
    void install(UnitTree& tree) override;
};

} // namespace headunit
