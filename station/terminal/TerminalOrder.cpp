#include "terminal/TerminalOrder.h"

#include <limits>

#include "client/Failure.h"
#include "client/forms/CommandArguments.h"
#include "session/OptionLine.h"

namespace station {

namespace {

constexpr char kName[] = "serial";
constexpr char kWord[] = "terminal";

// What follows are the wireless chip's channels, which are no lines.
constexpr std::uint32_t kLastLine = 239;

std::uint32_t numberOf(const std::string& text, const char* what, std::uint32_t most) {
    const auto number = parseNumber(text);
    if (!number || *number > most)
        throw Failure(Failure::Kind::InvalidRequest, std::string("invalid ") + what + " '" + text +
                                                         "': expected 0 to " + std::to_string(most) +
                                                         ", such as 16, 0x10 or 020");
    return *number;
}

} // namespace

const char kTerminalHelp[] = R"help(
A pipe between this terminal and a serial line of the unit (it has a --help of its own):
  station serial terminal 1
  station serial terminal 1 --baud 9600 --flags 0x08
  printf 'AT\r' | station serial terminal 1
It opens the channel, and closes it in the end. What is typed goes to the line as it is, Ctrl-C included; Ctrl-]
ends. Input that is no terminal ends by itself: then the line is shown until nothing has come for about half a
second. --timeout is the time for the connection and then for each request.)help";

bool isTerminal(const std::string& name, const std::vector<std::string>& arguments) {
    return name == kName && !arguments.empty() && arguments.front() == kWord;
}

std::optional<TerminalOrder> parseTerminalOrder(const std::vector<std::string>& arguments,
                                                std::ostream& help) {
    std::string channel;
    std::string baud = "115200";
    std::string flags = "0";
    const OptionLine line = {
        std::string(kName) + ' ' + kWord,
        "Connects this terminal with a serial line of the unit.",
        {
            {"CHANNEL", &channel, "The line's channel", "", true},
            {"--baud", &baud, "Bits per second", "B"},
            {"--flags", &flags,
             "Bit 0: two stop bits; bits 1 and 2: 0 no parity, 4 even, 6 odd; bit 3: 7 data bits", "F"},
        }};
    if (!parseOptions(line, arguments, help))
        return std::nullopt;
    TerminalOrder order;
    order.channel = numberOf(channel, "channel", kLastLine);
    order.baud = numberOf(baud, "baud", std::numeric_limits<std::uint32_t>::max());
    order.flags = numberOf(flags, "flags", std::numeric_limits<std::uint8_t>::max());
    return order;
}

} // namespace station
