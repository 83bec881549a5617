#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

TestFolder::TestFolder() {
    std::string path = ::testing::TempDir() + "test-XXXXXX";
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
