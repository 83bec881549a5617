#include "transfer/OptionLine.h"

#include <CLI/CLI.hpp>

#include "client/Failure.h"

namespace station {

bool parseOptions(CLI::App& app, const std::string& command, const std::vector<std::string>& arguments,
                  std::ostream& help) {
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
                                                         command + " --help for more information.");
    }
}

} // namespace station
