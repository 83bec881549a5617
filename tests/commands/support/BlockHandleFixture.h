#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "commands/mCmd.h"
#include "support/BlockFile.h"
#include "support/TestFolder.h"

/// Handles on devices that are files in a folder of the case's own.
class BlockHandleFixture : public ::testing::Test {
protected:
    static constexpr int kCard = 180;

    std::string path() const { return in("device"); }
    std::string in(const std::string& name) const { return m_folder / name; }

    mCmd::Handle writable() const { return {kCard, path(), true}; }
    mCmd::Handle readOnly() const { return {kCard, path(), false}; }

private:
    const TestFolder m_folder;
};

/// A descriptor that this process has for that file; -1 when there is none.
int descriptorOf(const std::string& path);

void expectSuccess(const DeviceResult& result);
void expectFailure(const DeviceResult& result, const std::string& text, int code = 0x01010000);
