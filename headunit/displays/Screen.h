#pragma once

#include <string>

#include "displays/DisplayState.h"
#include "pictures/Picture.h"

namespace headunit {

/// The picture in a BMP file of the displays' size. Throws UnitError when it cannot be read or is none.
Picture loadPicture(const std::string& path);

/// What a display looks like: the picture, black, or a striped field with the name of what is routed to
/// it, "INPUT 3". Throws UnitError as loadPicture does.
Picture screenOf(const Shown& shown);

} // namespace headunit
