#pragma once

#include <string>
#include <vector>

#include "client/forms/BinaryForm.h"
#include "client/forms/CommandArguments.h"

namespace station {

// The binary form of each command; what it takes stands at the head of its source. All of them throw
// what `binaryForm` says.

BinaryForm ackForm(const std::vector<std::string>& arguments);
BinaryForm audioForm(const CommandArguments& arguments);
BinaryForm blockdevForm(const CommandArguments& arguments);
BinaryForm diagForm(const CommandArguments& arguments);
BinaryForm execForm(const std::vector<std::string>& arguments);
BinaryForm graphicForm(const CommandArguments& arguments);
BinaryForm i2cForm(const CommandArguments& arguments);
BinaryForm memoryForm(const CommandArguments& arguments);
BinaryForm portForm(const CommandArguments& arguments);
BinaryForm serialForm(const CommandArguments& arguments);
BinaryForm statusForm(const std::vector<std::string>& arguments);

} // namespace station
