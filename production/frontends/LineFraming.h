#pragma once

#include <cstddef>
#include <string>

/// How the daemon's lines travel, over TCP and over the serial line: STX, "#", text, ETX, LF.
namespace LineFraming {

/// What the framing adds to a text, in bytes.
constexpr std::size_t kBytes = 4;

/// Appends the framed text to `line`.
inline void append(std::string& line, const std::string& text) {
    line.reserve(line.size() + text.size() + kBytes);
    line += "\x02#";
    line += text;
    line += "\x03\n";
}

} // namespace LineFraming
