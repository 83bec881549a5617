#pragma once

#include <string>

#include "pictures/Picture.h"

namespace headunit_test {

/// The picture of a PNG file with red, green and blue of 8 bits each. Throws std::runtime_error that
/// says what is wrong with the bytes.
headunit::Picture decodePng(const std::string& bytes);

/// Whether every point of the two is the same.
bool areEqual(const headunit::Picture& left, const headunit::Picture& right);

} // namespace headunit_test
