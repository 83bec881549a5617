#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace station {

/// Reads the options of a command of the program's own, such as "memory upload", into those of `app`:
/// all arguments but the first, which is the command's second word. False when they ask for help, which
/// then went to `help`. Throws `Failure` (`InvalidRequest`) for options that `app` does not have.
bool parseOptions(CLI::App& app, const std::string& command, const std::vector<std::string>& arguments,
                  std::ostream& help);

} // namespace station
