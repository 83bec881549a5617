#pragma once

#include <string>

/// What the daemon says on standard error. A program that has this among its sources keeps it, in place
/// of saying it a thousand times a second.
namespace ErrorText {

void add(const std::string& text);

/// All since the last call.
std::string taken();

} // namespace ErrorText
