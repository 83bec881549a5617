#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// How lines travel, over TCP and over the serial line. A request: STX, text, ETX, LF. What a unit
/// sends: STX, "#", text, ETX, LF.
namespace wire {

constexpr char kStartOfText = 0x02;
constexpr char kEndOfText = 0x03;
constexpr char kLineFeed = '\n';
constexpr char kAnswerMark = '#'; ///< of every line that a unit sends

constexpr char kRequestBegin[] = {kStartOfText, '\0'};
constexpr char kAnswerBegin[] = {kStartOfText, kAnswerMark, '\0'};
constexpr char kLineEnd[] = {kEndOfText, kLineFeed, '\0'};

/// What the framing adds to the text of an answer, in bytes.
constexpr std::size_t kAnswerFraming = sizeof kAnswerBegin + sizeof kLineEnd - 2;

/// Appends the request to `line`.
inline void appendRequest(std::string& line, std::string_view text) {
    line.append(kRequestBegin).append(text).append(kLineEnd);
}

/// Appends the unit's line to `line`.
inline void appendAnswer(std::string& line, std::string_view text) {
    line.reserve(line.size() + text.size() + kAnswerFraming);
    line.append(kAnswerBegin).append(text).append(kLineEnd);
}

/// The unit's line, made in the text's place where that has room.
inline std::string answerLine(std::string text) {
    text.insert(0, kAnswerBegin);
    text += kLineEnd;
    return text;
}

} // namespace wire
