#include "displays/Screen.h"

#include <algorithm>

#include "pictures/BitmapFile.h"
#include "pictures/Lettering.h"
#include "pictures/TestPictures.h"
#include "unit/UnitError.h"
#include "unit/UnitTree.h"

namespace headunit {
namespace {

constexpr std::size_t kStripe = 40; // points
constexpr std::size_t kScale = 10;  // points of a letter's square
constexpr Colour kDark{24, 40, 72};
constexpr Colour kLight{40, 64, 104};
constexpr Colour kInk{255, 255, 255};

std::string labelFor(int source) {
    if (const auto input = videoInputOf(source))
        return "INPUT " + std::to_string(*input);
    return "SOURCE " + std::to_string(source);
}

/// Where something of this length begins that is to stand in the middle.
std::size_t middle(std::size_t whole, std::size_t length) {
    return whole > length ? (whole - length) / 2 : 0;
}

Picture labelled(const std::string& label) {
    Picture picture(kDisplayWidth, kDisplayHeight);
    for (std::size_t y = 0; y < kDisplayHeight; ++y)
        for (std::size_t x = 0; x < kDisplayWidth; ++x)
            picture.at(x, y) = (x + y) / kStripe % 2 == 0 ? kDark : kLight;
    letter(picture, label, middle(kDisplayWidth, letteringWidth(label.size()) * kScale),
           middle(kDisplayHeight, kLetterHeight * kScale), kScale, kInk);
    return picture;
}

} // namespace

Picture loadPicture(const std::string& path) {
    const auto picture = decodeBitmap(readHostFile(path));
    if (!picture || picture->width() != kDisplayWidth || picture->height() != kDisplayHeight)
        throw UnitError(path + " is no BMP file of " + std::to_string(kDisplayWidth) + "x" +
                        std::to_string(kDisplayHeight) + " points with 24 bits each");
    return *picture;
}

Picture screenOf(const Shown& shown) {
    if (!shown.picture.empty())
        return loadPicture(shown.picture);
    if (shown.source)
        return labelled(labelFor(*shown.source));
    return {kDisplayWidth, kDisplayHeight};
}

} // namespace headunit
