#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// How requests and answers write numbers and bytes.

/// Upper-case hexadecimal digits.
std::string hexDigits(std::string_view bytes);

/// "hex(...)" with upper-case digits, as answers have it.
std::string hexText(std::string_view bytes);

/// "base64(...)".
std::string base64Text(std::string_view bytes);

/// Two and four bytes, the most significant first.
std::string bigEndian16(std::uint32_t number);
std::string bigEndian32(std::uint32_t number);

char asByte(std::uint32_t number);
