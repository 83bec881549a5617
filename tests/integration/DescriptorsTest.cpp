#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using testing::IsEmpty;

class DescriptorsTest : public DaemonTest {
protected:
    auto inheritable() const { return inheritableDescriptors(daemon.pid()); }

    /// Something that only the start needs may still be open.
    bool settlesAt(std::size_t count) const {
        return eventually([&] { return openDescriptors(daemon.pid()).size() == count; });
    }
};

TEST_F(DescriptorsTest, OfAnIdleDaemonAreNotInherited) {
    EXPECT_TRUE(settlesAt(kOwnDescriptors));
    EXPECT_THAT(inheritable(), IsEmpty());
}

TEST_F(DescriptorsTest, OfConnectionsAreNotInherited) {
    const std::vector<Connection> stations = acceptedStations(10);
    EXPECT_TRUE(settlesAt(kOwnDescriptors + stations.size()));
    EXPECT_THAT(inheritable(), IsEmpty());
}

TEST_F(DescriptorsTest, OfARunningCommandAreNotInherited) {
    Connection busy;
    busy.send(request(
        "exec command 60 \"touch /tmp/running; while [ ! -e /tmp/go ]; do sleep 0.01; done; echo done\""));
    ASSERT_TRUE(eventually([] { return exists("/tmp/running"); }));
    Connection waiting;
    waiting.send(request("exec command 60 \"echo waited\""));
    waiting.waitUntilTaken();
    EXPECT_GT(openDescriptors(daemon.pid()).size(), 7U);
    EXPECT_THAT(inheritable(), IsEmpty());
    writeFile("/tmp/go", "");
    expectExchange(busy, "", answer("exec base64(" + base64("done\n") + ")"));
    expectExchange(waiting, "", answer("exec base64(" + base64("waited\n") + ")"));
}

TEST_F(DescriptorsTest, OfABusyDaemonAreNeverInherited) {
    Connection quick;
    Connection shell;
    for (int round = 0; round < 20; ++round) {
        shell.send(request("exec command 60 \"head -c 100000 /dev/zero | tr '\\000' x\""));
        for (int look = 0; look < 10; ++look) {
            Connection passing;
            passing.send(request("status 02"));
            passing.waitUntilTaken();
            EXPECT_THAT(inheritable(), IsEmpty());
        }
        expectExchange(shell, "", answer("exec base64(" + base64(std::string(100000, 'x')) + ")"));
    }
    expectNothingMore(quick);
}

TEST(LeftOpenDescriptor, DoesNotReachTheShell) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    DaemonStart start;
    start.leftOpen = ends[1];
    const Daemon daemon(start);
    EXPECT_THAT(inheritableDescriptors(daemon.pid()), testing::SizeIs(1));
    Connection station;
    expectExchange(station, request("exec command 5 \"ls /proc/self/fd\""),
                   answer("exec base64(" + base64("0\n1\n2\n3\n") + ")"));
    expectHealthy(daemon);
}

} // namespace
