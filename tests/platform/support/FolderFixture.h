#pragma once

#include <gmock/gmock.h>

#include <filesystem>

#include "support/TestFolder.h"

/// A folder of the case's own, which goes with it.
class FolderFixture : public ::testing::Test {
    TestFolder m_own;

protected:
    const std::filesystem::path m_folder = m_own.path();
};
