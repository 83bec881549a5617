#pragma once

#include <cstddef>
#include <string_view>

#include "client/forms/BinaryForm.h"
#include "client/forms/CommandArguments.h"

namespace station {

/// Takes the first word off a text whose words stand a blank apart.
constexpr std::string_view takeWord(std::string_view& text) {
    const std::size_t end = text.find(' ');
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return word;
}

constexpr bool hasWord(std::string_view text, std::string_view word) {
    while (!text.empty())
        if (takeWord(text) == word)
            return true;
    return false;
}

inline constexpr std::string_view kHexDigits = "0123456789ABCDEF";

/// Two hexadecimal digits.
constexpr bool isByte(std::string_view word) {
    return word.size() == 2 && kHexDigits.find(word[0]) != std::string_view::npos &&
           kHexDigits.find(word[1]) != std::string_view::npos;
}

/// What such digits stand for.
constexpr unsigned char byteOf(std::string_view digits) {
    return static_cast<unsigned char>(kHexDigits.find(digits[0]) << 4 | kHexDigits.find(digits[1]));
}

/// One form of a command: what it reads like on a line, and what it is as a frame.
struct FormRow {
    /// The command's name and its arguments. A word in small letters has to be there, if only as the
    /// beginning of an argument; one in capitals is a field. "..." at the end: more arguments are
    /// ignored, as the unit does.
    std::string_view usage;
    /// The command's id, as a letter or two hexadecimal digits, and what follows: bytes as two
    /// hexadecimal digits, and fields. A field is a number in one byte, with ":4" behind it in four, and
    /// with ":level" 0 or 1 as what a port has for it.
    std::string_view frame;
    /// What the payload of an answer reads like.
    AnswerText (*answer)();

    constexpr std::string_view name() const { return usage.substr(0, usage.find(' ')); }

    constexpr char id() const {
        std::string_view parts = frame;
        const std::string_view word = takeWord(parts);
        return isByte(word) ? static_cast<char>(byteOf(word)) : word.front();
    }

    /// Whether each field of the frame is one of the usage, and none looks like a byte.
    constexpr bool isWhole() const {
        std::string_view parts = frame;
        takeWord(parts); // the id
        while (!parts.empty()) {
            const std::string_view part = takeWord(parts);
            if (!isByte(part) && !hasWord(usage, part.substr(0, part.find(':'))))
                return false;
        }
        for (std::string_view words = usage; !words.empty();)
            if (isByte(takeWord(words)))
                return false;
        return true;
    }

    /// Whether these are its arguments.
    bool takes(const CommandArguments& arguments) const;

    /// Throws `Failure` (`InvalidRequest`) for an argument that is not what its field wants.
    BinaryForm form(const CommandArguments& arguments) const;
};

} // namespace station
