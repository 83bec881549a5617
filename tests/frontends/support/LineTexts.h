#pragma once

#include <string>

/// Texts that a line carries as they are.
inline const std::string kTexts[] = {"status ok", "", "Info \"what\"", std::string("a\0b", 3),
                                     "100%s \x02\x03\n"};
