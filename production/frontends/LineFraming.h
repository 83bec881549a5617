#pragma once

#include <cstddef>
#include <string>

/// How the daemon's lines travel, over TCP and over the serial line: STX, "#", text, ETX, LF.
namespace LineFraming {

/// What the framing adds to a text, in bytes.
constexpr std::size_t kBytes = 4;

constexpr char kBegin[] = "\x02#";
constexpr char kEnd[] = "\x03\n";

/// Appends the framed text to `line`.
inline void append(std::string& line, const std::string& text) {
    line.reserve(line.size() + text.size() + kBytes);
    line += kBegin;
    line += text;
    line += kEnd;
}

/// The framed text, made in the text's place where that has room.
inline std::string frame(std::string text) {
    text.insert(0, kBegin);
    text += kEnd;
    return text;
}

} // namespace LineFraming
