#include "pictures/Lettering.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace headunit {
namespace {

struct Shape {
    char letter;
    std::array<std::string_view, kLetterHeight> rows;
};

constexpr char kInk = '#';

constexpr Shape kShapes[] = {
    {'0', {" ### ", "#   #", "#  ##", "# # #", "##  #", "#   #", " ### "}},
    {'1', {"  #  ", " ##  ", "  #  ", "  #  ", "  #  ", "  #  ", " ### "}},
    {'2', {" ### ", "#   #", "    #", "   # ", "  #  ", " #   ", "#####"}},
    {'3', {" ### ", "#   #", "    #", "  ## ", "    #", "#   #", " ### "}},
    {'4', {"   # ", "  ## ", " # # ", "#  # ", "#####", "   # ", "   # "}},
    {'5', {"#####", "#    ", "#### ", "    #", "    #", "#   #", " ### "}},
    {'6', {" ### ", "#    ", "#    ", "#### ", "#   #", "#   #", " ### "}},
    {'7', {"#####", "    #", "   # ", "  #  ", "  #  ", "  #  ", "  #  "}},
    {'8', {" ### ", "#   #", "#   #", " ### ", "#   #", "#   #", " ### "}},
    {'9', {" ### ", "#   #", "#   #", " ####", "    #", "    #", " ### "}},
    {'-', {"     ", "     ", "     ", "#####", "     ", "     ", "     "}},
    {'C', {" ### ", "#   #", "#    ", "#    ", "#    ", "#   #", " ### "}},
    {'E', {"#####", "#    ", "#    ", "#### ", "#    ", "#    ", "#####"}},
    {'I', {" ### ", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", " ### "}},
    {'N', {"#   #", "##  #", "# # #", "#  ##", "#   #", "#   #", "#   #"}},
    {'O', {" ### ", "#   #", "#   #", "#   #", "#   #", "#   #", " ### "}},
    {'P', {"#### ", "#   #", "#   #", "#### ", "#    ", "#    ", "#    "}},
    {'R', {"#### ", "#   #", "#   #", "#### ", "# #  ", "#  # ", "#   #"}},
    {'S', {" ####", "#    ", "#    ", " ### ", "    #", "    #", "#### "}},
    {'T', {"#####", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", "  #  "}},
    {'U', {"#   #", "#   #", "#   #", "#   #", "#   #", "#   #", " ### "}},
};

void paintSquare(Picture& picture, std::size_t left, std::size_t top, std::size_t scale, Colour colour) {
    for (std::size_t y = top; y < std::min(top + scale, picture.height()); ++y)
        for (std::size_t x = left; x < std::min(left + scale, picture.width()); ++x)
            picture.at(x, y) = colour;
}

} // namespace

void letter(Picture& picture, std::string_view text, std::size_t left, std::size_t top,
            std::size_t scale, Colour colour) {
    for (const char wanted : text) {
        const auto* const shape =
            std::find_if(std::begin(kShapes), std::end(kShapes),
                         [wanted](const Shape& known) { return known.letter == wanted; });
        for (std::size_t row = 0; shape != std::end(kShapes) && row < kLetterHeight; ++row)
            for (std::size_t column = 0; column < kLetterWidth; ++column)
                if (shape->rows[row][column] == kInk)
                    paintSquare(picture, left + column * scale, top + row * scale, scale, colour);
        left += (kLetterWidth + 1) * scale;
    }
}

} // namespace headunit
