#pragma once

#include <string>

/// Extended regular expressions of POSIX, over text without NUL bytes. std::invalid_argument for a
/// pattern that is none.

bool matchesWhole(const std::string& text, const std::string& pattern);

/// `text` with each match of the pattern, which must not match nothing, replaced.
std::string replaceAll(const std::string& text, const std::string& pattern,
                       const std::string& replacement);
