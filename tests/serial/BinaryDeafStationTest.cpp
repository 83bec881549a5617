#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "line/BinaryLink.h"
#include "support/DaemonTest.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

using namespace std::string_literals;

constexpr int kEnoughToFillTheLine = 50000;
constexpr std::chrono::seconds kObservation{2};
constexpr std::chrono::milliseconds kLittleProcessorTime{kSanitized ? 1000 : 200};
constexpr std::chrono::milliseconds kNothingMoreComes{1500};

constexpr char kLineFull[] =
    "~ ### ~ Exception: ID: 0x11 DESC: Failed to write to "
    "/dev/usbserialadapter1: Resource temporarily unavailable";

const std::string kAcknowledgedRequest = std::string(kStatusRequest).append(kAcknowledgement);

/// A station that sends requests and acknowledgements but reads nothing.
class BinaryDeafStation : public testing::Test {
protected:
    void SetUp() override {
        const std::string announcement = statusFrame(daemon.buildStamp(), false);
        ASSERT_EQ(adapter.receive(announcement.size()), announcement);
        adapter.send(kAcknowledgement);
    }

    bool fillLine() {
        for (int sent = 0; sent < kEnoughToFillTheLine; ++sent) {
            adapter.send(kAcknowledgedRequest);
            if (daemon.error().find(kLineFull) != std::string::npos)
                return true;
        }
        return daemon.waitForError(kLineFull);
    }

    void drainLine() {
        while (!adapter.isSilentFor(kNothingMoreComes))
            adapter.receive(1);
    }

    Adapter adapter;
    Daemon daemon{withStationLine()};
};

TEST_F(BinaryDeafStation, IsGivenUpAndServedAgain) {
    {
        const Witness witness;
        ASSERT_TRUE(fillLine());
        EXPECT_TRUE(witness.seesMore(100));
    }
    const auto before = processorTime(daemon.pid());
    observeFor(kObservation);
    EXPECT_LT(processorTime(daemon.pid()) - before, kLittleProcessorTime);

    drainLine();
    adapter.send(kAcknowledgedRequest);
    EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), true));
}

TEST_F(BinaryDeafStation, MayFillTheLineAgain) {
    ASSERT_TRUE(fillLine());
    const Witness witness;
    for (int round = 0; round < 3; ++round) {
        for (int sent = 0; sent < kEnoughToFillTheLine / 10; ++sent)
            adapter.send(kAcknowledgedRequest);
        EXPECT_TRUE(witness.seesMore(10));
        drainLine();
        adapter.send(kAcknowledgedRequest);
        EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), true));
    }
}

} // namespace
