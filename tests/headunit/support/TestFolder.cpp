#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace headunit_test {

namespace fs = std::filesystem;

TestFolder::TestFolder() {
    std::string path = ::testing::TempDir() + "headunit-test-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr)
        throw std::runtime_error("no folder " + path);
    m_path = fs::canonical(path).string();
}

TestFolder::~TestFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

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
