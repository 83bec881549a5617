// Reads that fail: the caller's count stays, and no byte lands where it was not asked for.
#include "support/DriverFixture.h"
#include "support/GuardedBuffer.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr unsigned kUntouched = 4711;
constexpr char kNotOpen[] = "Serial port not open.";

class ReadFailureTest : public DriverFixture {
protected:
    DeviceResult read(int length, unsigned timeoutMs) {
        return m_driver->read(m_count, m_buffer.data(), length, timeoutMs);
    }

    void expectUntouchedBut(unsigned bytes) {
        EXPECT_EQ(m_count, kUntouched);
        EXPECT_TRUE(m_buffer.isUntouchedBut(bytes));
    }

    GuardedBuffer<8> m_buffer;
    unsigned m_count = kUntouched;
};

} // namespace

TEST_P(ReadFailureTest, AClosedDriverReadsNothing) {
    EXPECT_THAT(read(8, 0), isFailure(0x400, kNotOpen));
    EXPECT_THAT(read(8, 10), isFailure(0x400, kNotOpen));
    System::Mutex mutex(System::Mutex::Normal);
    m_calls.watch(mutex);
    EXPECT_THAT(m_driver->read_locked(m_count, m_buffer.data(), 8, 0, &mutex),
                isFailure(1024, kNotOpen));
    EXPECT_THAT(m_calls.all(), IsEmpty());
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, ADriverThatWasClosedReadsNothing) {
    open();
    ASSERT_THAT(m_driver->close(), isSuccess());
    EXPECT_THAT(read(8, 0), isFailure(0x400, kNotOpen));
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, AWaitThatFailsIsTold) {
    open();
    for (const int error : {ENOMEM, EINVAL}) {
        m_calls.failNext("poll", error);
        EXPECT_THAT(read(8, kLongMs), isFailure(error, textFor("Failed to select from ", error)));
    }
    EXPECT_THAT(m_calls.all(), ElementsAre("poll", "poll"));
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, AWaitThatFailsAfterSomeBytesIsToldToo) {
    open();
    m_line.send("ab", 2);
    m_calls.script("poll", {DeviceCalls::passing(), DeviceCalls::failing(ENOMEM)});
    EXPECT_THAT(read(8, kLongMs), isFailure(ENOMEM, textFor("Failed to select from ", ENOMEM)));
    expectUntouchedBut(2);
}

TEST_P(ReadFailureTest, ADescriptorThatIsNoneIsAWaitThatFails) {
    open();
    m_calls.script("poll", {DeviceCalls::returning(1)});
    m_calls.pollEvents = POLLNVAL;
    EXPECT_THAT(read(8, kLongMs), isFailure(EBADF, textFor("Failed to select from ", EBADF)));
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, NewsOfNothingIsToldWithoutAnError) {
    open();
    m_line.send("abc", 3);
    m_calls.script("poll", {DeviceCalls::returning(1)});
    m_calls.pollEvents = 0;
    EXPECT_THAT(read(8, 20), isFailure(0, "Select indicated data, but none set"));
    EXPECT_THAT(m_calls.all(), ElementsAre("poll"));
    EXPECT_EQ(m_line.waiting(), 3);
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, AReadThatFailsIsTold) {
    open();
    m_line.send("abc", 3);
    for (const int error : {EIO, ENXIO, ENODEV}) {
        for (const unsigned timeoutMs : {0U, kLongMs}) {
            m_calls.failNext("read", error);
            EXPECT_THAT(read(8, timeoutMs), isFailure(error, textFor("Failed to read from ", error)));
        }
    }
    EXPECT_EQ(m_line.waiting(), 3);
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, AnEndOfFileIsALineThatHasGone) {
    open();
    m_line.send("abc", 3);
    for (const unsigned timeoutMs : {0U, kLongMs}) {
        m_calls.script("read", {DeviceCalls::returning(0)});
        EXPECT_THAT(read(8, timeoutMs), isFailure(EIO, textFor("Failed to read from ", EIO)));
    }
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, AFailureAfterSomeBytesKeepsTheCount) {
    open();
    m_line.send("ab", 2);
    m_calls.script("poll", {DeviceCalls::passing(), DeviceCalls::returning(1)});
    m_calls.script("read", {DeviceCalls::passing(), DeviceCalls::failing(ENODEV)});
    EXPECT_THAT(read(8, kLongMs), isFailure(ENODEV, textFor("Failed to read from ", ENODEV)));
    expectUntouchedBut(2);
}

TEST_P(ReadFailureTest, ALineThatHangsUpEndsTheRead) {
    open();
    m_calls.script("poll", {DeviceCalls::after([this] { m_line.hangUp(); })});
    EXPECT_THAT(read(8, 0), isFailure(5, textFor("Failed to read from ", EIO)));
    EXPECT_THAT(read(8, kLongMs), isFailure(5, textFor("Failed to read from ", EIO)));
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, ALineThatHangsUpBetweenChunksEndsTheRead) {
    open();
    m_line.send("ab", 2);
    m_calls.script("poll", {DeviceCalls::passing(), DeviceCalls::after([this] { m_line.hangUp(); })});
    EXPECT_THAT(read(8, kLongMs), isFailure(EIO, textFor("Failed to read from ", EIO)));
    expectUntouchedBut(2);
}

TEST_P(ReadFailureTest, APortThatIsClosedWhileItIsWaitedForIsNotOpen) {
    System::Mutex mutex(System::Mutex::Normal);
    for (const unsigned timeoutMs : {0U, kLongMs}) {
        open();
        const auto closing = [&]() -> std::optional<long> {
            const System::Lock lock(mutex);
            EXPECT_THAT(m_driver->close(), isSuccess());
            return 1;
        };
        m_calls.script("poll", {closing});
        const System::Lock lock(mutex);
        EXPECT_THAT(m_driver->read_locked(m_count, m_buffer.data(), 8, timeoutMs, &mutex),
                    isFailure(0x400, kNotOpen));
        EXPECT_THAT(m_calls.all(), ElementsAre("poll", "tcsetattr"));
    }
    expectUntouchedBut(0);
}

TEST_P(ReadFailureTest, APortThatIsClosedWhileTheTimeRunsOutIsNotOpen) {
    open();
    const auto closing = [&]() -> std::optional<long> {
        EXPECT_THAT(m_driver->close(), isSuccess());
        return 0;
    };
    m_calls.script("poll", {closing});
    EXPECT_THAT(read(8, kLongMs), isFailure(0x400, kNotOpen));
    expectUntouchedBut(0);
}

WITH_BOTH_DRIVERS(ReadFailureTest);
