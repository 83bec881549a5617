#pragma once

#include <string>

#include "support/TestFolder.h"

namespace headunit_test {

std::string contentOf(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

} // namespace headunit_test
