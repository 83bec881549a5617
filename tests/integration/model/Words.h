#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/Request.h"

/// The words of a line as a command takes them.
class Words {
public:
    explicit Words(const std::vector<Word>& words);

    std::size_t count() const { return m_values.size(); }

    /// All its bytes, the zero byte behind a text included.
    const std::string& bytes(std::size_t at) const { return m_values[at]; }

    /// Up to its first zero byte.
    std::string text(std::size_t at) const;

    bool begins(std::size_t at, std::string_view with) const;

    /// Decimal, hexadecimal or octal, up to what belongs to none; 0 where there is none.
    std::int64_t wide(std::size_t at) const;

    /// The same in 32 bits, or the nearest number that has them; one that is too large only for its sign
    /// keeps its bits.
    std::int32_t number(std::size_t at) const;

    std::uint32_t bits(std::size_t at) const { return static_cast<std::uint32_t>(number(at)); }
    std::uint32_t modulo256(std::size_t at) const { return bits(at) & 0xFF; }

private:
    std::vector<std::string> m_values;
};

/// A byte, or a big-endian number of four, at this place of a whole frame.
std::uint32_t byteAt(const std::string& frame, std::size_t at);
std::uint32_t numberAt(const std::string& frame, std::size_t at);
