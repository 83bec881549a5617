#pragma once

#include <cstddef>
#include <string_view>

#include "pictures/Picture.h"

namespace headunit {

/// A letter is so many squares wide and high; between two of them one column stays free.
constexpr std::size_t kLetterWidth = 5;
constexpr std::size_t kLetterHeight = 7;

/// The squares that a text is wide.
constexpr std::size_t letteringWidth(std::size_t letters) {
    return letters == 0 ? 0 : letters * (kLetterWidth + 1) - 1;
}

/// Writes a text of capital letters that the labels of the displays need, digits, '-' and blanks with
/// its upper left corner there, each square `scale` points wide. What has no shape is left blank, and
/// what lies outside the picture left out. Any thread.
void letter(Picture& picture, std::string_view text, std::size_t left, std::size_t top,
            std::size_t scale, Colour colour);

} // namespace headunit
