#include "session/OptionLine.h"

#include <CLI/CLI.hpp>

#include "client/Failure.h"

namespace station {

namespace {

void addRow(CLI::App& app, const OptionRow& row) {
    CLI::Option* const option = app.add_option(row.name, *row.value, row.description);
    option->type_name(row.type);
    if (row.required)
        option->required();
    else
        option->capture_default_str();
}

} // namespace

bool parseOptions(const OptionLine& line, const std::vector<std::string>& arguments,
                  std::ostream& help) {
    CLI::App app(line.description, "station [OPTION...] " + line.command);
    for (const OptionRow& row : line.rows)
        addRow(app, row);
    try {
        // It takes them from the end.
        std::vector<std::string> rest(arguments.rbegin(), arguments.rend() - 1);
        app.parse(rest);
        return true;
    } catch (const CLI::CallForHelp&) {
        help << app.help();
        return false;
    } catch (const CLI::ParseError& error) {
        throw Failure(Failure::Kind::InvalidRequest, std::string(error.what()) + "\nRun with " +
                                                         line.command + " --help for more information.");
    }
}

} // namespace station
