// Writing and flushing.
#include <thread>

#include "support/DriverFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class WriteTest : public DriverFixture {
protected:
    // The kernel moves what was written on to the far end
    // in its own time, which makes room a few times more.
    DeviceResult writeUntilRefused(const std::string& bytes) {
        constexpr int kMoreThanALineHolds = 100;
        DeviceResult result;
        for (int writes = 0; writes < kMoreThanALineHolds && !result.failed(); ++writes)
            result = m_driver->write(bytes.data(), static_cast<int>(bytes.size()));
        return result;
    }

    const char* flushing() const { return usesStream() ? "fflush" : "tcflush"; }
};

} // namespace

TEST_P(WriteTest, BytesReachTheFarEndAtOnce) {
    open();
    const std::string bytes("one\0two\n", 8);
    EXPECT_THAT(m_driver->write(bytes.data(), 8), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("write"));
    EXPECT_EQ(m_line.receive(8), bytes);
}

TEST_P(WriteTest, OnlyAsManyBytesAsSaidAreWritten) {
    open();
    EXPECT_THAT(m_driver->write("abcdef", 3), isSuccess());
    EXPECT_THAT(m_driver->write("|", 1), isSuccess());
    EXPECT_EQ(m_line.receive(4), "abc|");
    EXPECT_TRUE(m_line.isSilent());
}

TEST_P(WriteTest, NothingToWriteIsASuccess) {
    open();
    EXPECT_THAT(m_driver->write("abc", 0), isSuccess());
    EXPECT_TRUE(m_line.isSilent());
}

TEST_P(WriteTest, AShortWriteIsASuccessAndNotRepeated) {
    open();
    m_calls.script("write", {DeviceCalls::returning(3)});
    EXPECT_THAT(m_driver->write("abcdefgh", 8), isSuccess());
    const std::vector<std::string> calls = m_calls.all();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.front(), "write");
    // A stream tells whoever waits for the line that there is more to do.
    EXPECT_EQ(calls.size(), usesStream() ? 2U : 1U);
    EXPECT_TRUE(m_line.isSilent());
}

TEST_P(WriteTest, AWriteOfNothingIsASuccessAndNotRepeated) {
    open();
    m_calls.script("write", {DeviceCalls::returning(0)});
    EXPECT_THAT(m_driver->write("abcdefgh", 8), isSuccess());
    EXPECT_TRUE(m_line.isSilent());
}

TEST_P(WriteTest, AWriteThatFailsIsTold) {
    open();
    for (const int error : {EIO, ENXIO, EAGAIN, ENODEV}) {
        if (usesStream() && error == EAGAIN)
            continue; // only full: the stream keeps the bytes
        m_calls.forget();
        m_calls.failNext("write", error);
        EXPECT_THAT(m_driver->write("abc", 3), isFailure(error, textFor("Failed to write to ", error)));
        EXPECT_THAT(m_calls.all(), ElementsAre("write"));
    }
    EXPECT_TRUE(isOpen());
}

TEST_P(WriteTest, AnInterruptedWriteIsRepeated) {
    open();
    m_calls.failNext("write", EINTR);
    EXPECT_THAT(m_driver->write("abc", 3), isSuccess());
    EXPECT_EQ(m_line.receive(3), "abc");
    EXPECT_THAT(m_calls.all(), ElementsAre("write", "write"));
}

TEST_P(WriteTest, ALineThatHasHungUpTakesNothing) {
    open();
    m_line.hangUp();
    EXPECT_THAT(m_driver->write("abc", 3), isFailure(EIO, textFor("Failed to write to ", EIO)));
}

TEST_P(WriteTest, AFullLineTakesWhatItCanOrLetsTheStreamKeepTheRest) {
    open();
    const std::string bytes(200000, 'x');
    EXPECT_THAT(m_driver->write(bytes.data(), static_cast<int>(bytes.size())), isSuccess());
    // The descriptor's driver cut that short; the stream has taken more than it is willing to keep.
    EXPECT_THAT(writeUntilRefused(bytes), isFailure(EAGAIN, textFor("Failed to write to ", EAGAIN)));
    EXPECT_TRUE(isOpen());
}

TEST_P(WriteTest, AClosedDriverWritesNothing) {
    EXPECT_THAT(m_driver->write("abc", 3), isFailure(0x400, "Serial port not open."));
    open();
    ASSERT_THAT(m_driver->close(), isSuccess());
    m_calls.forget();
    EXPECT_THAT(m_driver->write("abc", 3), isFailure(1024, "Serial port not open."));
    EXPECT_THAT(m_calls.all(), IsEmpty());
    EXPECT_TRUE(m_line.isSilent());
}

TEST_P(WriteTest, OnlyTheDescriptorsFlushDiscardsWhatHasArrived) {
    open();
    m_line.send("unread", 6);
    EXPECT_THAT(m_driver->flush(), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre(flushing()));
    EXPECT_EQ(m_line.waiting(), usesStream() ? 6 : 0);
    EXPECT_EQ(m_calls.lastFlushSelector, usesStream() ? -1 : TCIOFLUSH);
}

TEST_P(WriteTest, OpeningDiscardsWhatArrivedBefore) {
    termios raw = m_line.attributes();
    ::cfmakeraw(&raw);
    m_line.setAttributes(raw);
    m_line.send("before", 6);
    open();
    EXPECT_EQ(m_line.waiting(), 0);
}

TEST_P(WriteTest, WhatWasWrittenSurvivesTheStreamsFlush) {
    open();
    EXPECT_THAT(m_driver->write("abc", 3), isSuccess());
    if (usesStream()) {
        EXPECT_THAT(m_driver->flush(), isSuccess());
    }
    EXPECT_EQ(m_line.receive(3), "abc");
}

TEST_P(WriteTest, AFlushThatFailsIsTold) {
    open();
    m_calls.failNext(flushing(), EIO);
    EXPECT_THAT(m_driver->flush(), isFailure(EIO, textFor("Error flushing ", EIO)));
    EXPECT_TRUE(isOpen());
}

TEST_P(WriteTest, AClosedDriverFlushesNothing) {
    EXPECT_THAT(m_driver->flush(), isFailure(0x400, "Calling Flush on an invalid Handle"));
    EXPECT_THAT(m_calls.all(), IsEmpty());
}

WITH_BOTH_DRIVERS(WriteTest);
