#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "pictures/Picture.h"

namespace headunit {

/// The bytes of a BMP file with 24 bits a point, not compressed, its lowest row first. Any thread.
std::string encodeBitmap(const Picture& picture);

/// The picture of such a file. Nothing when the bytes are something else, end early, or hold a picture
/// of more than 4096 points a side.
std::optional<Picture> decodeBitmap(std::string_view bytes);

} // namespace headunit
