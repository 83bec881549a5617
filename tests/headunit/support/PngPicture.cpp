#include "support/PngPicture.h"

#include <zlib.h>

#include <cstdint>
#include <stdexcept>

namespace headunit_test {
namespace {

using headunit::Colour;
using headunit::Picture;

void require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

std::size_t bigEndian32(const std::string& bytes, std::size_t at) {
    std::size_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

const Bytef* pointer(const std::string& bytes, std::size_t at) {
    return reinterpret_cast<const Bytef*>(bytes.data() + at);
}

/// The data of the chunk at `at`, which is moved behind it.
std::string takeChunk(const std::string& bytes, std::size_t& at, const std::string& type) {
    require(at + 12 <= bytes.size(), "a chunk is cut off");
    const std::size_t size = bigEndian32(bytes, at);
    require(size <= bytes.size() - at - 12, "a chunk's data are cut off");
    require(bytes.substr(at + 4, 4) == type, "there is another chunk");
    const auto sum = ::crc32(0, pointer(bytes, at + 4), static_cast<uInt>(size + 4));
    require(sum == bigEndian32(bytes, at + 8 + size), "a chunk's checksum is wrong");
    std::string data = bytes.substr(at + 8, size);
    at += 12 + size;
    return data;
}

} // namespace

Picture decodePng(const std::string& bytes) {
    require(bytes.substr(0, 8) == "\x89PNG\r\n\x1A\n", "the signature is wrong");
    std::size_t at = 8;
    const std::string header = takeChunk(bytes, at, "IHDR");
    require(header.size() == 13 && header.substr(8) == std::string("\x08\x02\0\0\0", 5),
            "the points have another form");
    Picture picture(bigEndian32(header, 0), bigEndian32(header, 4));
    const std::string data = takeChunk(bytes, at, "IDAT");
    require(takeChunk(bytes, at, "IEND").empty() && at == bytes.size(), "there is more after the end");

    const std::size_t row = 1 + picture.width() * 3;
    std::string rows(row * picture.height(), '\0');
    uLongf size = rows.size();
    require(::uncompress(reinterpret_cast<Bytef*>(rows.data()), &size, pointer(data, 0), data.size()) ==
                    Z_OK &&
                size == rows.size(),
            "the data are wrong");
    const auto colour = [&](std::size_t place) { return static_cast<std::uint8_t>(rows[place]); };
    for (std::size_t y = 0; y < picture.height(); ++y) {
        require(rows[y * row] == '\0', "a row has a filter");
        for (std::size_t x = 0; x < picture.width(); ++x) {
            const std::size_t place = y * row + 1 + x * 3;
            picture.at(x, y) = Colour{colour(place), colour(place + 1), colour(place + 2)};
        }
    }
    return picture;
}

bool areEqual(const Picture& left, const Picture& right) {
    if (left.width() != right.width() || left.height() != right.height())
        return false;
    for (std::size_t y = 0; y < left.height(); ++y)
        for (std::size_t x = 0; x < left.width(); ++x)
            if (!(left.at(x, y) == right.at(x, y)))
                return false;
    return true;
}

} // namespace headunit_test
