// The channel's mutex during a read: free while it waits, held when the device is touched.
#include <atomic>
#include <thread>

#include "support/DriverFixture.h"
#include "support/Waiting.h"

using ::testing::ElementsAre;

namespace {

class ReadLockTest : public DriverFixture {
protected:
    ReadLockTest() {
        open();
        m_calls.watch(m_mutex);
        m_mutex.lock();
    }

    ~ReadLockTest() override { m_mutex.unlock(); }

    DeviceResult read(int length, unsigned timeoutMs) {
        m_calls.forget();
        const DeviceResult result =
            m_driver->read_locked(m_count, m_buffer, length, timeoutMs, &m_mutex);
        m_seen = m_calls.all();
        return result;
    }

    System::Mutex m_mutex{System::Mutex::Normal};
    char m_buffer[16] = {};
    unsigned m_count = 0;
    std::vector<std::string> m_seen;
};

} // namespace

TEST_P(ReadLockTest, TheMutexIsGivenBackForTheWaitOnly) {
    m_line.send("ab", 2);
    EXPECT_THAT(read(4, 0), isSuccess());
    EXPECT_THAT(m_seen, ElementsAre("unlock", "poll", "lock", "read"));
}

TEST_P(ReadLockTest, EachWaitGivesItBack) {
    m_line.send("ab", 2);
    m_calls.script("poll",
                   {DeviceCalls::passing(), DeviceCalls::after([this] { m_line.send("cd", 2); })});
    EXPECT_THAT(read(4, kLongMs), isSuccess());
    EXPECT_THAT(m_seen, ElementsAre("unlock", "poll", "lock", "read", "unlock", "poll", "lock", "read"));
}

TEST_P(ReadLockTest, ItIsHeldAgainWhenTheTimeHasRunOut) {
    EXPECT_THAT(read(4, 20), isSuccess());
    EXPECT_THAT(m_seen, ElementsAre("unlock", "poll", "lock"));
}

TEST_P(ReadLockTest, ItIsHeldAgainWhenTheWaitFails) {
    m_calls.failNext("poll", ENOMEM);
    EXPECT_THAT(read(4, 20), isFailure(ENOMEM, textFor("Failed to select from ", ENOMEM)));
    EXPECT_THAT(m_seen, ElementsAre("unlock", "poll", "lock"));
}

TEST_P(ReadLockTest, AnInterruptedWaitKeepsItFree) {
    m_line.send("ab", 2);
    m_calls.failNext("poll", EINTR);
    EXPECT_THAT(read(2, kLongMs), isSuccess());
    EXPECT_THAT(m_seen, ElementsAre("unlock", "poll", "poll", "lock", "read"));
}

TEST_P(ReadLockTest, WithoutAMutexNoneIsTouched) {
    m_line.send("ab", 2);
    m_calls.forget();
    EXPECT_THAT(m_driver->read_locked(m_count, m_buffer, 4, 0, nullptr), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("poll", "read"));
    m_line.send("ab", 2);
    m_calls.forget();
    EXPECT_THAT(m_driver->read(m_count, m_buffer, 4, 0), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("poll", "read"));
}

TEST_P(ReadLockTest, AnotherThreadMayWriteMeanwhile) {
    std::thread writer;
    const auto letItWrite = [&] {
        writer = std::thread([this] {
            const System::Lock lock(m_mutex);
            EXPECT_THAT(m_driver->write("from another", 12), isSuccess());
        });
        EXPECT_EQ(m_line.receive(12), "from another");
        m_line.send("answer", 6);
    };
    m_calls.script("poll", {DeviceCalls::after(letItWrite)});
    EXPECT_THAT(read(6, kLongMs), isSuccess());
    EXPECT_EQ(std::string(m_buffer, m_count), "answer");
    m_mutex.unlock();
    writer.join();
    m_mutex.lock();
}

TEST_P(ReadLockTest, AnotherThreadMayCloseThePortMeanwhile) {
    std::atomic<bool> waits{false};
    m_calls.script("poll", {DeviceCalls::after([&] { waits = true; })});
    std::thread closer([&] {
        EXPECT_TRUE(eventually([&] { return waits.load(); }));
        {
            const System::Lock lock(m_mutex);
            EXPECT_THAT(m_driver->close(), isSuccess());
        }
        m_line.send("too late");
    });
    m_count = 4711;
    EXPECT_THAT(read(8, 5000), isFailure(0x400, "Serial port not open."));
    EXPECT_EQ(m_count, 4711U);
    m_mutex.unlock();
    closer.join();
    m_mutex.lock();
}

WITH_BOTH_DRIVERS(ReadLockTest);
