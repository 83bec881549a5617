#pragma once

#include <string>

/// The line that a station gets.
inline std::string framed(const std::string& text) {
    return "\x02#" + text + "\x03\n";
}

/// Texts that a line carries as they are.
inline const std::string kTexts[] = {"status ok", "", "Info \"what\"", std::string("a\0b", 3),
                                     "100%s \x02\x03\n"};
