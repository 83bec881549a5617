#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "line/Adapter.h"
#include "support/DaemonTest.h"

/// Long enough for an answer that must not come.
constexpr std::chrono::milliseconds kSilence{200};

inline DaemonStart asciiStart() {
    DaemonStart start;
    start.stationLine = true;
    start.supplier = "SOLMED";
    return start;
}

/// The line with which the daemon greets its station.
inline std::string banner(const Daemon& daemon) {
    return answer("Info Production Test Server (Build " + daemon.buildStamp() + ")");
}

/// The numbers of those descriptors of a process that stand for a terminal, also for one that has hung
/// up.
inline std::vector<int> openTerminals(pid_t pid) {
    std::vector<int> found;
    for (const int descriptor : openDescriptors(pid)) {
        std::error_code error;
        const auto target = std::filesystem::read_symlink(
            "/proc/" + std::to_string(pid) + "/fd/" + std::to_string(descriptor), error);
        if (target.string().rfind("/dev/pts/", 0) == 0)
            found.push_back(descriptor);
    }
    return found;
}

/// A daemon that serves its station in lines of text, fresh for each case: it has greeted the station,
/// and must be healthy in the end, on both of its links.
class AsciiDaemonTest : public testing::Test {
protected:
    AsciiDaemonTest() { expectBanner(); }

    void TearDown() override {
        expectNothingMore(adapter);
        expectHealthy(daemon);
    }

    void expectBanner() { expectExchange(adapter, "", banner(daemon)); }

    Adapter adapter;
    Daemon daemon{asciiStart()};
};
