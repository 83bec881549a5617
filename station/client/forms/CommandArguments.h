#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace station {

/// The number that a text is, as the unit reads it in the ASCII form: decimal, hexadecimal (0x10) or
/// octal (010), without a sign. Nothing for any other text and for what does not fit.
std::optional<std::uint32_t> parseNumber(std::string_view text);

/// The arguments of a command as the unit receives them on an ASCII line: a word
/// or a quoted text ends with a zero byte, which is part of its bytes; `hex(...)`
/// and `base64(...)` are the bytes that they stand for, those of base64 filled up
/// with zeros to a multiple of three. The name is not among them. Immutable.
class CommandArguments {
public:
    /// Throws `Failure` (`InvalidRequest`) for an argument that cannot travel on an ASCII line or is not
    /// the encoding that it says.
    explicit CommandArguments(const std::vector<std::string>& arguments);

    std::size_t size() const { return m_tokens.size(); }

    const std::string& bytes(std::size_t at) const { return m_tokens[at]; }

    /// The bytes up to the first zero.
    std::string_view text(std::size_t at) const;

    bool beginsWith(std::size_t at, std::string_view word) const;

    /// A number that has to fit in one byte or in four. `what` names it in the message of the `Failure`
    /// (`InvalidRequest`) for one that does not, or is no number.
    std::uint8_t byte(std::size_t at, const char* what) const;
    std::uint32_t word(std::size_t at, const char* what) const;

private:
    std::uint32_t number(std::size_t at, const char* what, std::uint32_t most) const;

    std::vector<std::string> m_tokens;
};

} // namespace station
