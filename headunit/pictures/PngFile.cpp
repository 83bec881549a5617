#include "pictures/PngFile.h"

#include <zlib.h>

#include <cstdint>
#include <new>
#include <string_view>

namespace headunit {
namespace {

constexpr std::string_view kSignature("\x89PNG\r\n\x1A\n");
constexpr char kBitsOfColour = 8;
constexpr char kTrueColour = 2;
constexpr std::string_view kUsualMethods("\0\0\0", 3); // compression, filters, rows in order
constexpr char kNoFilter = 0;
constexpr std::size_t kBytesOfPoint = 3;
constexpr std::uint32_t kByte = 0xFF;

void append32(std::string& bytes, std::size_t number) {
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        bytes += static_cast<char>((number >> shift) & kByte);
}

void appendChunk(std::string& bytes, std::string_view type, const std::string& data) {
    append32(bytes, data.size());
    const std::string summed = std::string(type) + data;
    bytes += summed;
    append32(bytes, ::crc32(0, reinterpret_cast<const Bytef*>(summed.data()),
                            static_cast<uInt>(summed.size())));
}

std::string header(const Picture& picture) {
    std::string data;
    append32(data, picture.width());
    append32(data, picture.height());
    data += kBitsOfColour;
    data += kTrueColour;
    return data.append(kUsualMethods);
}

std::string rows(const Picture& picture) {
    std::string data;
    data.reserve((picture.width() * kBytesOfPoint + 1) * picture.height());
    for (std::size_t y = 0; y < picture.height(); ++y) {
        data += kNoFilter;
        for (std::size_t x = 0; x < picture.width(); ++x) {
            const Colour& colour = picture.at(x, y);
            data += static_cast<char>(colour.red);
            data += static_cast<char>(colour.green);
            data += static_cast<char>(colour.blue);
        }
    }
    return data;
}

std::string compressed(const std::string& data) {
    uLongf size = ::compressBound(data.size());
    std::string result(size, '\0');
    // There is room enough, so that it can only fail for want of memory.
    if (::compress2(reinterpret_cast<Bytef*>(result.data()), &size,
                    reinterpret_cast<const Bytef*>(data.data()), data.size(), Z_BEST_SPEED) != Z_OK)
        throw std::bad_alloc();
    result.resize(size);
    return result;
}

} // namespace

std::string encodePng(const Picture& picture) {
    std::string bytes(kSignature);
    appendChunk(bytes, "IHDR", header(picture));
    appendChunk(bytes, "IDAT", compressed(rows(picture)));
    appendChunk(bytes, "IEND", "");
    return bytes;
}

} // namespace headunit
