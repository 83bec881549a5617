#pragma once

#include <string>

/// The bytes of a line: two hexadecimal digits each, "quoted" characters, and {build} for the bytes of
/// the build time. Throws std::invalid_argument for anything else.
std::string bytesOf(const std::string& text, const std::string& buildTime);
