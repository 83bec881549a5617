#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

/// The one scanner of command lines, shared by all front ends.
class CommandLexer {
public:
    /// Lines that are longer than this leave so much behind that it is worth giving back.
    static constexpr std::size_t kLongLine = std::size_t{1} << 20;

    /// The tokens of the command in `line`, the command's name first. A line without a command gives the
    /// tokens of the command before it, whoever sent that. A line ends at its first zero byte, if any.
    ///
    /// Any thread; waits while another thread scans. Throws std::bad_alloc for a line that does not fit
    /// into memory, or is longer than the scanner can count; the scanner is as new then.
    static std::vector<std::vector<char>> scan(std::string_view line);
};
