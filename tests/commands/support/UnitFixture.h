#pragma once

#include <gmock/gmock.h>

#include <string>

#include "support/CommandBench.h"
#include "support/Files.h"
#include "support/FreshProcess.h"

constexpr char kCaptureFile[] = "/tmp/resp.txt";

/// A simulated unit whose files a case may change. Fails where there is none, before it can do harm.
class UnitFixture : public ::testing::Test {
protected:
    UnitFixture();

    static void write(const std::string& path, const std::string& content) { writeFile(path, content); }
    static void remove(const std::string& path);
    static std::string read(const std::string& path) { return contentOf(path); }
};
