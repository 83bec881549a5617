#include <gtest/gtest.h>

#include <string>

#include "AsciiDaemonTest.h"
#include "support/Pattern.h"

namespace {

TEST(AsciiRuntime, OfMoreThanSevenAndAHalfSecondsIsReportedOnceForTheCommand) {
    Adapter adapter;
    const Daemon daemon(asciiStart());
    expectExchange(adapter, "", banner(daemon));
    expectNothingMore(adapter);
    ASSERT_TRUE(isBannerOnly(daemon.error())) << daemon.error();
    const std::string quiet = daemon.error();

    expectExchange(adapter, request("exec command 60 \"sleep 8\""), answer("exec base64()"));
    ASSERT_TRUE(daemon.waitForError(" ms\n"));
    const std::string attention = daemon.error().substr(quiet.size());
    EXPECT_TRUE(matchesWhole(attention,
                             "Prod\\.testserver: ### ATTENTION: Command-Runtime for "
                             "\"exec\": ([89]|[1-9][0-9])[0-9]{3} ms\n"))
        << attention;

    // The next command's time is its own.
    expectNothingMore(adapter);
    EXPECT_EQ(daemon.error(), quiet + attention);
}

} // namespace
