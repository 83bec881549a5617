#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>

#include "AsciiDaemonTest.h"
#include "support/SocketTable.h"
#include "support/Waiting.h"

namespace {

bool says(const Daemon& daemon, const std::string& line) {
    return daemon.error().find("Prod.testserver: " + line + "\n") != std::string::npos;
}

bool isWithoutNetworkOnly(const Daemon& daemon) {
    return says(daemon, "No thread for the network front end") &&
           !says(daemon, "No thread for the serial front end");
}

/// With an adapter that is plugged in.
DaemonStart startWithin(rlim_t addressSpace) {
    DaemonStart start = asciiStart();
    start.limits = {{RLIMIT_AS, addressSpace}, {RLIMIT_CORE, 0}};
    start.waitForPort = false;
    return start;
}

/// Whether the network's thread, and no other one that serves, could not be made.
bool lacksNetworkOnly(const Daemon& daemon) {
    EXPECT_TRUE(
        eventually([&] { return !daemon.isAlive() || isListening() || isWithoutNetworkOnly(daemon); }));
    return isWithoutNetworkOnly(daemon);
}

/// In bytes, the largest of those tried that does not suffice for the network's thread; 0 when it was
/// never the one that was lacking.
rlim_t addressSpaceWithoutNetwork() {
    constexpr rlim_t kStep = rlim_t{64} << 10;
    rlim_t found = 0;
    for (rlim_t bytes = rlim_t{5} << 20;; bytes += kStep) {
        const Adapter adapter;
        const Daemon daemon(startWithin(bytes));
        if (lacksNetworkOnly(daemon))
            found = bytes;
        else if (isListening())
            return found;
    }
}

TEST(AsciiNoNetwork, ADaemonWithoutItsThreadServesItsLine) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer needs the address space";
    const rlim_t addressSpace = addressSpaceWithoutNetwork();
    ASSERT_GT(addressSpace, 0U);
    // The system places a program differently each time, so that it needs more or less.
    constexpr int kAttempts = 50;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        Adapter adapter;
        const Daemon daemon(startWithin(addressSpace));
        if (!lacksNetworkOnly(daemon))
            continue;
        expectExchange(adapter, "", banner(daemon));
        expectExchange(adapter, request("status"),
                       answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"));
        EXPECT_FALSE(isListening());
        return;
    }
    FAIL() << "it had its network's thread each time";
}

} // namespace
