#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "pictures/Picture.h"

namespace headunit {

/// What a display of the unit shows, in points.
constexpr std::size_t kDisplayWidth = 800;
constexpr std::size_t kDisplayHeight = 480;

/// Seven vertical bars: white, yellow, cyan, green, magenta, red, blue. Any thread, as below.
Picture colourBars();

/// As many vertical bars, at least two, from black on the left to white on the right in equal steps.
Picture greyBars(unsigned bars);

struct TestPicture {
    std::string_view name; ///< of its file
    Picture (*draw)();
};

/// The unit's three test pictures.
extern const std::array<TestPicture, 3> kTestPictures;

} // namespace headunit
