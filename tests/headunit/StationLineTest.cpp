#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <thread>

#include "support/Peers.h"
#include "support/Program.h"
#include "support/TestBytes.h"
#include "support/Waiting.h"

namespace headunit_test {
namespace {

constexpr char kNode[] = "/dev/usbserialadapter1";
constexpr std::size_t kMebibyte = 1024 * 1024;

/// Bytes that repeat late enough to show a loss or a repetition.
std::string longText(std::size_t size) {
    std::string text;
    for (unsigned number = 0; text.size() < size; ++number)
        text += std::to_string(number) + '\0';
    text.resize(size);
    return text;
}

class StationLineTest : public PeersTest {
protected:
    void sendsSlowly(const Line& from, const Line& to) {
        const std::string sent = longText(kMebibyte);
        bool written = false;
        std::thread writer([&] { written = from.trySend(sent); });
        std::string received;
        while (received.size() < sent.size()) {
            const std::string piece =
                to.receive(std::min<std::size_t>(997, sent.size() - received.size()));
            if (piece.empty())
                break;
            received += piece;
            std::this_thread::yield();
        }
        writer.join();
        EXPECT_TRUE(written);
        EXPECT_TRUE(received == sent) << received.size();
    }

    /// Writes until nobody takes any more, then reads all of it.
    void waitsForTheReader(const Line& from, const Line& to) {
        const std::string text = longText(kMebibyte);
        std::size_t sent = 0;
        int refusals = 0;
        ASSERT_TRUE(eventually([&] {
            const std::size_t count = from.writeSome(text.substr(sent));
            sent += count;
            refusals = count > 0 ? 0 : refusals + 1;
            return refusals == 50 || sent == text.size();
        }));
        ASSERT_LT(sent, text.size()) << "somebody keeps any number of bytes";
        EXPECT_TRUE(to.receive(sent) == text.substr(0, sent));
    }
};

TEST_F(StationLineTest, PassesEveryByteBothWays) {
    const Line unit(node(kNode));
    const Line station(stationEnd());
    ASSERT_TRUE(station.trySend(everyByte()));
    EXPECT_EQ(unit.receive(256), everyByte());
    ASSERT_TRUE(unit.trySend(everyByte()));
    EXPECT_EQ(station.receive(256), everyByte());
    EXPECT_EQ(unit.readNow(), "");
}

TEST_F(StationLineTest, LosesNothingToASlowReader) {
    const Line unit(node(kNode));
    const Line station(stationEnd());
    sendsSlowly(station, unit);
    sendsSlowly(unit, station);
}

TEST_F(StationLineTest, MakesTheWriterWaitForTheReader) {
    const Line unit(node(kNode));
    const Line station(stationEnd());
    waitsForTheReader(station, unit);
    waitsForTheReader(unit, station);
}

TEST_F(StationLineTest, IsTheSameForAProgramThatClosesAndReopensIt) {
    const Line station(stationEnd());
    for (int round = 0; round < 3; ++round) {
        const Line unit(node(kNode));
        ASSERT_TRUE(unit.trySend("a\r"));
        EXPECT_EQ(station.receive(2), "a\r");
        ASSERT_TRUE(station.trySend("b\n"));
        EXPECT_EQ(unit.receive(2), "b\n");
    }
}

TEST_F(StationLineTest, HangsUpWhenItIsUnplugged) {
    const Line unit(node(kNode));
    const Line station(stationEnd());
    tell("unplug station");
    EXPECT_FALSE(exists(kNode));
    EXPECT_TRUE(unit.seesHangUp());
    EXPECT_TRUE(std::filesystem::exists(stationEnd()));
}

TEST_F(StationLineTest, LosesWhatTheStationSendsMeanwhile) {
    const Line station(stationEnd());
    tell("unplug station");
    ASSERT_TRUE(station.trySend(longText(kMebibyte)));
    tell("plug station");
    const Line unit(node(kNode));
    ASSERT_TRUE(station.trySend("kept"));
    EXPECT_EQ(unit.receive(4), "kept");
}

TEST_F(StationLineTest, DeliversToTheStationWhatTheUnitWroteBefore) {
    const Line station(stationEnd());
    {
        const Line unit(node(kNode));
        ASSERT_TRUE(unit.trySend("before"));
        ASSERT_TRUE(eventually([&] {
            return ask("state").text.find("station /dev/usbserialadapter1 plugged from-unit 6 ") == 0;
        }));
        tell("unplug station");
    }
    EXPECT_EQ(station.receive(6), "before");
}

TEST_F(StationLineTest, IsUnpluggedManyTimesWhileDataFlows) {
    const Line station(stationEnd());
    std::atomic<bool> stop{false};
    std::atomic<std::uint64_t> taken{0};
    std::thread sender([&] {
        const std::string piece = longText(1000);
        while (!stop)
            if (station.writeSome(piece) == 0)
                station.readNow();
    });
    std::thread unit([&] {
        while (!stop) {
            if (!exists(kNode))
                continue;
            const System::Descriptor probe(::open(node(kNode).c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK));
            char block[512];
            for (ssize_t count = 1; probe && !stop && count != 0;) {
                count = ::read(probe.get(), block, sizeof block);
                taken += count > 0 ? static_cast<std::uint64_t>(count) : 0;
                if (count > 0 && ::write(probe.get(), block, 10) < 0 && errno == EIO)
                    break;
            }
        }
    });
    for (int round = 0; round < 100; ++round) {
        const std::uint64_t before = taken;
        EXPECT_TRUE(eventually([&] { return taken > before; })) << round;
        tell("unplug station");
        EXPECT_FALSE(exists(kNode));
        tell("plug station");
        EXPECT_TRUE(exists(kNode));
    }
    stop = true;
    sender.join();
    unit.join();

    tell("unplug station");
    while (!station.readNow().empty()) {
    }
    tell("plug station");
    const Line fresh(node(kNode));
    ASSERT_TRUE(station.trySend("to the unit"));
    EXPECT_EQ(fresh.receive(11), "to the unit");
    ASSERT_TRUE(fresh.trySend("to the station\xFF"));
    const std::string received = station.receiveTo("to the station\xFF");
    EXPECT_NE(received, "");
    EXPECT_EQ(received.back(), '\xFF');
}

TEST_F(StationLineTest, OutlivesAProgramThatHadItAsItsControllingTerminal) {
    const Line station(stationEnd());
    Program leader({"setsid", "sh", "-c", "exec <" + node(kNode) + "; echo here >" + node(kNode)});
    ASSERT_EQ(leader.wait(), 0) << leader.error();
    EXPECT_EQ(station.receive(5), "here\n");
    const Line unit(node(kNode));
    ASSERT_TRUE(station.trySend("a\rb\n\x03"));
    EXPECT_EQ(unit.receive(5), "a\rb\n\x03");
    ASSERT_TRUE(unit.trySend("c\n"));
    EXPECT_EQ(station.receive(2), "c\n");
}

} // namespace
} // namespace headunit_test
