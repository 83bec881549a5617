// The Bluetooth link opened and closed over TCP, while another station asks for the status.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char kLibrary[] = "/vrk/lib/mv8787bt.so";
constexpr int kCycles = 50;
/// Of opening, asking and closing, on a machine that is busy with other things.
constexpr milliseconds kGenerous{500};

class BluetoothCyclesTest : public DaemonTest {
protected:
    std::string status() const { return answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"); }
    bool hasLibrary() const {
        const std::string maps = contentOf("/proc/" + std::to_string(daemon.pid()) + "/maps");
        return maps.find("bluetooth_driver") != std::string::npos ||
               maps.find("mv8787bt") != std::string::npos;
    }

    void expectCyclesLeaveNothing() {
        Connection station;
        Connection other;
        expectExchange(other, request("status"), status());
        expectExchange(station, request("serial close 241"), answer("serial ok"));
        const std::size_t threads = settledThreadCount(daemon.pid());
        const std::size_t descriptors = openDescriptors(daemon.pid()).size();
        const auto before = steady_clock::now();
        for (int cycle = 1; cycle <= kCycles && !HasFailure(); ++cycle) {
            SCOPED_TRACE(cycle);
            expectExchange(station, request("serial open 241"), answer("serial ok"));
            EXPECT_TRUE(hasLibrary());
            // Both wait for the dispatcher at the same time.
            station.send(request("serial close 241"));
            expectExchange(other, request("status"), status());
            expectExchange(station, "", answer("serial ok"));
            if (!kSanitized) { // a sanitizer keeps libraries
                EXPECT_FALSE(hasLibrary());
            }
        }
        const auto spent = steady_clock::now() - before;
        EXPECT_LT(spent / kCycles, kGenerous);
        RecordProperty(
            "microsecondsPerCycle",
            static_cast<int>(std::chrono::duration_cast<std::chrono::microseconds>(spent).count() /
                             kCycles));
        EXPECT_TRUE(eventually([&] { return threadCount(daemon.pid()) == threads; }));
        EXPECT_EQ(openDescriptors(daemon.pid()).size(), descriptors);
    }
};

TEST_F(BluetoothCyclesTest, WithTheUnitsDriverLeaveNothingBehind) {
    expectCyclesLeaveNothing();
}

TEST_F(BluetoothCyclesTest, WithADriverThatClosingDoesNotWakeLeaveNothingBehind) {
    if (kSanitized && !kAddressSanitized)
        GTEST_SKIP()
            << "the thread sanitizer loses sight of a thread that is cancelled in a system call";
    const std::string unitsOwn = std::filesystem::read_symlink(kLibrary);
    removeFile(kLibrary);
    makeLink(kLibrary, DEAF_BLUETOOTH_DRIVER);
    expectCyclesLeaveNothing();
    removeFile(kLibrary);
    makeLink(kLibrary, unitsOwn);
}

} // namespace
