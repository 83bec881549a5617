#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace headunit {

// Numbers as the unit's managers, its chips and its pictures have them: low byte first.

/// The number at this byte of `bytes`, which has to hold it.
std::uint32_t littleEndian32(std::string_view bytes, std::size_t at);
std::uint16_t littleEndian16(std::string_view bytes, std::size_t at);

void appendLittleEndian32(std::string& bytes, std::uint32_t number);
void appendLittleEndian16(std::string& bytes, std::uint16_t number);

} // namespace headunit
