#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace station {

/// What a command of the program's own takes beside its two words: an option when its name begins with
/// "--", else a word at its place.
struct OptionRow {
    const char* name;
    /// Takes the text as it was written. What it holds before is the default, which the help shows.
    std::string* value;
    const char* description;
    /// What the help calls the value: nothing for a word, whose name says it.
    const char* type = "";
    bool required = false;
};

struct OptionLine {
    /// Both words, such as "memory upload".
    std::string command;
    const char* description;
    std::vector<OptionRow> rows;
};

/// Reads all arguments but the first, which is the command's second word, into the values of the rows.
/// False when they ask for help, which then went to `help`. Throws `Failure` (`InvalidRequest`) for what
/// does not fit the rows.
bool parseOptions(const OptionLine& line, const std::vector<std::string>& arguments, std::ostream& help);

} // namespace station
