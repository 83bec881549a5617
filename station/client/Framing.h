#pragma once

namespace station {

// The characters that enclose a line, in both directions.
constexpr char kStartOfText = 0x02;
constexpr char kEndOfText = 0x03;
constexpr char kLineFeed = 0x0A;

// Follows STX in every line that a unit sends.
constexpr char kAnswerMark = '#';

} // namespace station
