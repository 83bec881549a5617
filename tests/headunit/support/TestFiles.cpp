#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace headunit_test {

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    ASSERT_TRUE(file.flush()) << path;
}

} // namespace headunit_test
