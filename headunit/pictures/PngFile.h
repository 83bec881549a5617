#pragma once

#include <string>

#include "pictures/Picture.h"

namespace headunit {

/// The bytes of a PNG file with 8 bits a colour. Takes
/// some milliseconds for a display's picture. Any thread.
std::string encodePng(const Picture& picture);

} // namespace headunit
