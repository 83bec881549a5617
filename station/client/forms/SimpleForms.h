#pragma once

#include <string_view>
#include <vector>

#include "client/forms/BinaryForm.h"
#include "client/forms/CommandArguments.h"

namespace station {

/// The commands whose forms are rows of a table, in the order of their names.
std::vector<std::string_view> simpleFormNames();

/// What the forms of one of them read like on a line.
std::vector<std::string_view> simpleUsages(std::string_view name);

/// The form of one of them. Throws what `binaryForm` says.
BinaryForm simpleForm(std::string_view name, const CommandArguments& arguments);

} // namespace station
