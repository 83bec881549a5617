#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace station {

/// Which line of the unit is to be opened, and how.
struct TerminalOrder {
    unsigned channel = 0;        ///< 0 to 239; which of them there are, the unit knows
    std::uint32_t baud = 115200; ///< bits per second
    unsigned flags = 0;          ///< stop bits, parity and data bits, as `serial open` takes them
};

/// The part of the program's help that is about this command.
extern const char kTerminalHelp[];

/// True for a command that is a terminal and not a request of the unit's own.
bool isTerminal(const std::string& name, const std::vector<std::string>& arguments);

/// Reads the arguments of such a command. Nothing when they ask for help, which then went to `help`.
/// Throws `Failure` (`InvalidRequest`) for arguments that cannot be followed.
std::optional<TerminalOrder> parseTerminalOrder(const std::vector<std::string>& arguments,
                                                std::ostream& help);

} // namespace station
