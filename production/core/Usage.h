#pragma once

/// What the daemon says about itself when it is asked instead of started. The text is that of
/// `production.use`, which the program carries in its section ".usage".
namespace Usage {

/// Prints the usage for "--help" or "-h" and the version for "--version" or "-V" to standard output.
/// False for anything else, or nothing: the daemon takes no arguments, and starts.
bool answer(int argc, const char* const* argv);

} // namespace Usage
