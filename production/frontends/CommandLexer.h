#pragma once

#include <cstddef>
#include <vector>

class LineAssembler;

/// The scanner of command lines. All front ends share what a line leaves to the next one.
class CommandLexer {
public:
    /// Lines that are longer than this leave so much behind that it is worth giving back.
    static constexpr std::size_t kLongLine = std::size_t{1} << 20;

    /// The tokens of the command in `line`, the command's name first. A line without a command gives the
    /// tokens of the command before it, whoever sent that. A line ends at its first zero byte, if any.
    /// It is scanned where it is, and is gone then: the next one begins.
    ///
    /// Any thread, and any number of them at once. Throws std::bad_alloc for a line that does not fit
    /// into memory, or is longer than the scanner can count; the scanner is as new then.
    static std::vector<std::vector<char>> scan(LineAssembler& line);
};
