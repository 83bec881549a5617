#pragma once

#include <string>
#include <vector>

namespace headunit {

/// The words behind a display tool's name.
using ToolArguments = std::vector<std::string>;

/// Throws UnitError when the word is no whole number.
int toolNumber(const std::string& word);

/// The same for a number that is no display's.
int displayNumber(const std::string& word);

} // namespace headunit
