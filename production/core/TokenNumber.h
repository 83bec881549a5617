#pragma once

#include <cstdint>
#include <optional>
#include <vector>

/// Numbers in tokens. A number is written in decimal, or with 0x in hexadecimal, or with 0 in octal
/// notation; a sign and, before it, white space may stand ahead of it, and any text behind it. A token
/// that begins with none of this is 0.

/// The number; beyond 64 bits the nearest one that has them.
std::int64_t tokenNumber(const std::vector<char>& token);

/// The number when it is one of 0 to `highest`.
std::optional<std::uint32_t> tokenNumberUpTo(const std::vector<char>& token, std::uint32_t highest);
