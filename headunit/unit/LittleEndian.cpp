#include "unit/LittleEndian.h"

namespace headunit {
namespace {

constexpr unsigned kNumberSize = 4;
constexpr unsigned kShortNumberSize = 2;
constexpr unsigned kBitsOfByte = 8;
constexpr std::uint32_t kByte = 0xFF;

std::uint32_t numberAt(std::string_view bytes, std::size_t at, unsigned size) {
    std::uint32_t number = 0;
    for (unsigned i = 0; i < size; ++i)
        number |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i]))
                  << (i * kBitsOfByte);
    return number;
}

void appendNumber(std::string& bytes, std::uint32_t number, unsigned size) {
    for (unsigned i = 0; i < size; ++i)
        bytes += static_cast<char>((number >> (i * kBitsOfByte)) & kByte);
}

} // namespace

std::uint32_t littleEndian32(std::string_view bytes, std::size_t at) {
    return numberAt(bytes, at, kNumberSize);
}

std::uint16_t littleEndian16(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint16_t>(numberAt(bytes, at, kShortNumberSize));
}

void appendLittleEndian32(std::string& bytes, std::uint32_t number) {
    appendNumber(bytes, number, kNumberSize);
}

void appendLittleEndian16(std::string& bytes, std::uint16_t number) {
    appendNumber(bytes, number, kShortNumberSize);
}

} // namespace headunit
