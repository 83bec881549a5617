#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace headunit {

struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const Colour& other) const {
        return red == other.red && green == other.green && blue == other.blue;
    }
};

/// Points in memory, from the left and from the top, black at first. Not synchronised.
class Picture {
public:
    Picture(std::size_t width, std::size_t height)
        : m_width(width), m_height(height), m_points(width * height) {}

    std::size_t width() const { return m_width; }
    std::size_t height() const { return m_height; }

    /// The point has to lie in the picture.
    const Colour& at(std::size_t x, std::size_t y) const { return m_points[y * m_width + x]; }
    Colour& at(std::size_t x, std::size_t y) { return m_points[y * m_width + x]; }

    /// All of them, one row after the other.
    const Colour* points() const { return m_points.data(); }
    Colour* points() { return m_points.data(); }

private:
    std::size_t m_width;
    std::size_t m_height;
    std::vector<Colour> m_points;
};

} // namespace headunit
