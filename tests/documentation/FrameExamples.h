#pragma once

#include <string>

/// The bytes of a line: two hexadecimal digits each, "quoted" characters, and {build} for the bytes of
/// the build time. What stands behind # is none of them. Throws std::invalid_argument for anything else.
std::string bytesOf(const std::string& text, const std::string& buildTime);

/// What stands behind "# " on a line: the words of the station that say the same. Empty without.
std::string wordsBehind(const std::string& text);
