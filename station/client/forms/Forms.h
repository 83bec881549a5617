#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/forms/BinaryForm.h"
#include "client/forms/CommandArguments.h"

namespace station {

// The binary forms of the commands that are more than rows of a table (see SimpleForms); what each takes
// stands at the head of its source. All of them throw what `binaryForm` says.

/// Tells which forms the command has; `note` follows.
[[noreturn]] void refuseArguments(std::string_view name, std::string_view note = {});

BinaryForm ackForm(const std::vector<std::string>& arguments);
BinaryForm execForm(const std::vector<std::string>& arguments);
BinaryForm i2cForm(const CommandArguments& arguments);
BinaryForm memoryForm(const CommandArguments& arguments);
BinaryForm serialForm(const CommandArguments& arguments);
BinaryForm statusForm(const std::vector<std::string>& arguments);

} // namespace station
