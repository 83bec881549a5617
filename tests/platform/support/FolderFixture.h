#pragma once

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <string>

/// A folder of the case's own, which goes with it.
class FolderFixture : public ::testing::Test {
protected:
    FolderFixture() {
        std::string pattern = std::filesystem::temp_directory_path() / "test-XXXXXX";
        EXPECT_NE(::mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
    }

    ~FolderFixture() override { std::filesystem::remove_all(m_folder); }

    std::filesystem::path m_folder;
};
