#include "pictures/TestPictures.h"

namespace headunit {
namespace {

constexpr std::uint8_t kFull = 255;
constexpr std::array<Colour, 7> kBarColours = {{{kFull, kFull, kFull},
                                                {kFull, kFull, 0},
                                                {0, kFull, kFull},
                                                {0, kFull, 0},
                                                {kFull, 0, kFull},
                                                {kFull, 0, 0},
                                                {0, 0, kFull}}};
constexpr unsigned kManyGreys = 33;
constexpr unsigned kFewGreys = 11;

/// Each column has the colour that `colourOf` gives for its bar.
template <typename ColourOf>
Picture verticalBars(std::size_t bars, ColourOf colourOf) {
    Picture picture(kDisplayWidth, kDisplayHeight);
    for (std::size_t y = 0; y < kDisplayHeight; ++y)
        for (std::size_t x = 0; x < kDisplayWidth; ++x)
            picture.at(x, y) = colourOf(x * bars / kDisplayWidth);
    return picture;
}

} // namespace

const std::array<TestPicture, 3> kTestPictures = {{
    {"colorscale_7bars_888_800x480.bmp", [] { return colourBars(); }},
    {"greyscale_33bars_888_800x480.bmp", [] { return greyBars(kManyGreys); }},
    {"greyscale_11bars_888_800x480.bmp", [] { return greyBars(kFewGreys); }},
}};

Picture colourBars() {
    return verticalBars(kBarColours.size(), [](std::size_t bar) { return kBarColours[bar]; });
}

Picture greyBars(unsigned bars) {
    return verticalBars(bars, [bars](std::size_t bar) {
        const auto level = static_cast<std::uint8_t>(bar * kFull / (bars - 1));
        return Colour{level, level, level};
    });
}

} // namespace headunit
