// The Bluetooth link opened and closed many times, with a driver whose read waits at a cancellation
// point and does not notice that its device is closed.
#include <chrono>
#include <filesystem>
#include <iterator>

#include "support/BluetoothFixture.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int kCycles = 1000;
/// Of one cycle, on a machine that is busy with other things.
constexpr milliseconds kGenerous{250};

std::ptrdiff_t entriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder),
                         std::filesystem::directory_iterator());
}
std::ptrdiff_t threads() {
    return entriesOf("/proc/self/task");
}
std::ptrdiff_t descriptors() {
    return entriesOf("/proc/self/fd");
}

class mvbtCmdCyclesTest : public BluetoothFixture {
protected:
    mvbtCmdCyclesTest() { m_driver.ignoreClosing(true); }
};

} // namespace

TEST_F(mvbtCmdCyclesTest, AThousandCyclesLeaveNothingBehind) {
    // A sanitizer makes a thread of its own beside the first one.
    open();
    ASSERT_EQ(m_link.close(), 0);
    const std::ptrdiff_t threadsBefore = threads();
    const std::ptrdiff_t descriptorsBefore = descriptors();
    steady_clock::duration spent{};
    for (int cycle = 1; cycle <= kCycles; ++cycle) {
        SCOPED_TRACE(cycle);
        const auto before = steady_clock::now();
        openAndRead();
        ASSERT_EQ(m_link.close(), 0);
        spent += steady_clock::now() - before;
        ASSERT_FALSE(m_driver.isLoaded());
        ASSERT_EQ(m_driver.readersWhenUnloaded(), 0);
        ASSERT_EQ(m_driver.loads(), cycle + 1);
        ASSERT_EQ(m_driver.closed().size(), static_cast<std::size_t>(cycle + 1));
    }
    EXPECT_LT(spent / kCycles, kGenerous);
    RecordProperty("microsecondsPerCycle",
                   static_cast<int>(
                       std::chrono::duration_cast<std::chrono::microseconds>(spent).count() / kCycles));
    EXPECT_TRUE(eventually([&] { return threads() == threadsBefore; }));
    EXPECT_EQ(descriptors(), descriptorsBefore);
}

TEST_F(mvbtCmdCyclesTest, ACycleAtAnyMomentOfTheReaderLeavesNothingBehind) {
    for (int cycle = 1; cycle <= kCycles; ++cycle) {
        SCOPED_TRACE(cycle);
        if (cycle % 2 == 0)
            m_driver.receive(kEvent, {1});
        open();
        ASSERT_EQ(m_link.close(), 0);
        ASSERT_FALSE(m_driver.isLoaded());
        ASSERT_EQ(m_driver.readers(), 0);
    }
}
