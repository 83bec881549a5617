#include "pictures/BitmapFile.h"

#include <cstdint>

#include "wire/LittleEndian.h"

namespace headunit {
namespace {

constexpr std::string_view kMagic = "BM";
constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kPictureHeader = 40;
constexpr std::size_t kHeaders = kFileHeader + kPictureHeader;

// Where the fields stand that a reader needs.
constexpr std::size_t kPointsPlace = 10;
constexpr std::size_t kPictureHeaderPlace = 14;
constexpr std::size_t kWidthPlace = 18;
constexpr std::size_t kHeightPlace = 22;
constexpr std::size_t kDepthPlace = 28;
constexpr std::size_t kCompressionPlace = 30;

constexpr std::uint16_t kPlanes = 1;
constexpr std::uint16_t kDepth = 24;
constexpr std::uint32_t kPointsOfMetre = 2835; // 72 an inch
constexpr std::uint32_t kLongestSide = 4096;
constexpr std::size_t kBytesOfPoint = 3;
constexpr std::size_t kRowUnit = 4; // bytes: rows are filled up to whole ones

std::size_t rowSize(std::size_t width) {
    return (width * kBytesOfPoint + kRowUnit - 1) / kRowUnit * kRowUnit;
}

void appendSize(std::string& bytes, std::size_t size) {
    appendLittleEndian32(bytes, static_cast<std::uint32_t>(size));
}

std::string headers(const Picture& picture) {
    const std::size_t points = rowSize(picture.width()) * picture.height();
    std::string bytes(kMagic);
    appendSize(bytes, kHeaders + points);
    appendLittleEndian32(bytes, 0);
    appendSize(bytes, kHeaders);
    appendSize(bytes, kPictureHeader);
    appendSize(bytes, picture.width());
    appendSize(bytes, picture.height());
    appendLittleEndian16(bytes, kPlanes);
    appendLittleEndian16(bytes, kDepth);
    appendLittleEndian32(bytes, 0); // not compressed
    appendSize(bytes, points);
    appendLittleEndian32(bytes, kPointsOfMetre);
    appendLittleEndian32(bytes, kPointsOfMetre);
    appendLittleEndian32(bytes, 0); // no palette
    appendLittleEndian32(bytes, 0);
    return bytes;
}

Colour colourAt(std::string_view bytes, std::size_t at) {
    return {static_cast<std::uint8_t>(bytes[at + 2]), static_cast<std::uint8_t>(bytes[at + 1]),
            static_cast<std::uint8_t>(bytes[at])};
}

} // namespace

std::string encodeBitmap(const Picture& picture) {
    std::string bytes = headers(picture);
    const std::size_t filling = rowSize(picture.width()) - picture.width() * kBytesOfPoint;
    bytes.reserve(bytes.size() + rowSize(picture.width()) * picture.height());
    for (std::size_t y = picture.height(); y-- > 0;) {
        for (std::size_t x = 0; x < picture.width(); ++x) {
            const Colour& colour = picture.at(x, y);
            bytes += static_cast<char>(colour.blue);
            bytes += static_cast<char>(colour.green);
            bytes += static_cast<char>(colour.red);
        }
        bytes.append(filling, '\0');
    }
    return bytes;
}

std::optional<Picture> decodeBitmap(std::string_view bytes) {
    if (bytes.size() < kHeaders || bytes.substr(0, kMagic.size()) != kMagic ||
        littleEndian32(bytes, kPictureHeaderPlace) < kPictureHeader ||
        littleEndian16(bytes, kDepthPlace) != kDepth || littleEndian32(bytes, kCompressionPlace) != 0)
        return std::nullopt;
    const std::uint32_t width = littleEndian32(bytes, kWidthPlace);
    const std::uint32_t height = littleEndian32(bytes, kHeightPlace);
    const std::size_t start = littleEndian32(bytes, kPointsPlace);
    if (width == 0 || width > kLongestSide || height == 0 || height > kLongestSide ||
        start > bytes.size() || bytes.size() - start < rowSize(width) * height)
        return std::nullopt;
    Picture picture(width, height);
    for (std::size_t y = 0; y < height; ++y) {
        const std::size_t row = start + (height - 1 - y) * rowSize(width);
        for (std::size_t x = 0; x < width; ++x)
            picture.at(x, y) = colourAt(bytes, row + x * kBytesOfPoint);
    }
    return picture;
}

} // namespace headunit
