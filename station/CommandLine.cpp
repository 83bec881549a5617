#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "client/forms/BinaryForm.h"
#include "terminal/TerminalOrder.h"
#include "transfer/OrderLine.h"
#include "wire/Catalogue.h"

namespace station {

namespace {

constexpr char kDescription[] = "Sends one test command to a unit and prints the answer.";

constexpr char kFooter[] = R"help(Options end at NAME: everything after it is an argument of the command.

Arguments:
  a plain word (letters, digits, _) travels as it is
      station status 03
  anything else travels quoted
      station exec command -1 "ls -l /dev"
  bytes as hex digits
      station i2c write 0 0x50 "hex(00 1F)"
  bytes as base64: also for text with a double quotation mark or a control character
      station i2c write 0 0x50 "base64(AB8K)"

The wireless chip: 240 is WLAN, 241 is Bluetooth, where the packet's type comes first:
  station serial open 241
  station serial send 241 "hex(01 03 0C 00)"
  station serial get 241 242

Where to and how:
  station --target tcp:unit.example:15051 status
  station --target tcp:[::1]:15051 status
  station --timeout 2.5 status
  station --json status
  STATION_TARGET=tcp:127.0.0.1:15052 STATION_TIMEOUT=5 station status

Serial line, 115200 baud, binary frames unless told otherwise:
  station --target serial:/dev/ttyUSB0 status
  station --target serial:/dev/ttyUSB0 exec command 5 "ls /dev"
  station --target serial:/dev/ttyUSB0 ack
  station --target serial:/dev/ttyUSB0 --wait-startup status
  station --target serial:/dev/ttyUSB0 raw "hex(03 73 01)"
  station --target serial:/dev/ttyUSB0 --protocol ascii status 03
  STATION_TARGET=serial:/dev/ttyUSB0 STATION_PROTOCOL=ascii station status
Every command has a binary form. status 03 and status 04 have none, nor have numbers too large for their
field, texts too long for a frame, and other characters than 20 to 7E in the text of exec. An i2c write has
one when DATA begins with the byte ADDRESS, which a unit sends first there; otherwise
  station --target serial:/dev/ttyUSB0 i2c read 0 1 0x50 "hex(00 1F)"
writes DATA, too, and then reads a byte. The result of exec, status 01 and status 02 is printed as text
when it is printable, as hex(...) when not; a frame holds its first 246 bytes. raw sends any bytes as they
are and prints the frames that come back until nothing comes for 200 ms after an answer; the last answer's
code counts. A unit that opens its port announces itself: "startup status ...". Within 500 ms of that, a
request that comes before the announcement is acknowledged can be lost; --wait-startup waits for the
announcement first. ack is never answered on this line: it succeeds after 200 ms, in which debug texts are
still shown.

The answer goes to standard output, Info lines, debug texts and errors to standard error; with --json
everything is in one object on standard output.

Exit code:
  0 success            3 cannot connect    5 refused by the unit
  2 wrong usage        4 time-out          6 malformed or incomplete answer)help";

/// The unit's commands, each with what it does and its forms.
std::string commandList() {
    std::string list = "Commands of the unit, asked and answered alike over every link:\n";
    for (const wire::Command& command : wire::kCatalogue) {
        constexpr std::size_t kColumn = 10;
        std::string line(command.name);
        line.resize(std::max(kColumn, line.size() + 1), ' ');
        list.append("  ").append(line).append(command.summary).append("\n");
        for (const std::string_view usage : binaryUsages(command.name))
            list.append("      station ").append(usage).append("\n");
    }
    return list;
}

class HelpFormatter : public CLI::Formatter {
public:
    // The command's name and arguments are no options of the parser, which would leave them out.
    std::string make_usage(const CLI::App*, std::string) const override {
        return "Usage: station [--target TARGET] [--protocol binary|ascii] [--timeout SECONDS]\n"
               "               [--wait-startup] [--json] [--progress auto|bar|plain|none]\n"
               "               NAME [ARG...]\n";
    }
};

ExitCode refuseUsage(const std::string& message) {
    std::cerr << "station: " << message << "\nRun with --help for more information.\n";
    return ExitCode::Usage;
}

} // namespace

std::optional<ExitCode> CommandLine::parse(int argc, const char* const* argv) {
    CLI::App app(kDescription, "station");
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(commandList() + '\n' + kFooter + '\n' + kTransferHelp + '\n' + kTerminalHelp);
    app.set_version_flag("--version", "station " STATION_VERSION);
    app.add_option("--target", target, "Where the unit is reached")
        ->type_name("tcp:HOST:PORT|serial:PATH")
        ->envname("STATION_TARGET")
        ->capture_default_str();
    app.add_option("--protocol", protocol,
                   "Form of the commands; default binary over serial, ascii over tcp")
        ->type_name("binary|ascii")
        ->envname("STATION_PROTOCOL");
    app.add_option("--timeout", timeout, "Time for connection and answer together")
        ->type_name("SECONDS")
        ->envname("STATION_TIMEOUT")
        ->capture_default_str();
    app.add_flag("--wait-startup", waitStartup, "Wait for the unit to announce itself first (binary)");
    app.add_flag("--json", json,
                 "Print one JSON object: name, answer, info, code, milliseconds; binary: payload");
    app.add_option("--progress", progress, "How a transfer of a whole file is shown")
        ->type_name("auto|bar|plain|none")
        ->capture_default_str();
    app.prefix_command();

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        app.exit(request);
        return ExitCode::Success;
    } catch (const CLI::ParseError& error) {
        return refuseUsage(error.what());
    }

    std::vector<std::string> command = app.remaining();
    if (!command.empty() && command.front() == "--")
        command.erase(command.begin());
    if (command.empty())
        return refuseUsage("the NAME of a command is missing");
    name = command.front();
    if (name.substr(0, 1) == "-")
        return refuseUsage("unknown option " + name);
    arguments.assign(command.begin() + 1, command.end());
    return std::nullopt;
}

} // namespace station
