#include <gtest/gtest.h>

#include "AsciiDaemonTest.h"
#include "support/SocketTable.h"

namespace {

TEST(AsciiNoNetwork, ADaemonWithoutItsThreadServesItsLine) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer's library wants to be the first one";
    Adapter adapter;
    DaemonStart start = asciiStart();
    start.missingThreads = "3";
    start.waitForPort = false;
    const Daemon daemon(start);
    ASSERT_TRUE(daemon.waitForError("Prod.testserver: No thread for the network front end\n"));
    expectExchange(adapter, "", banner(daemon));
    expectExchange(adapter, request("status"),
                   answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"));
    EXPECT_FALSE(isListening());
}

} // namespace
