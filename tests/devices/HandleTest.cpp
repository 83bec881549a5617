// A channel in front of its driver: its own device, its guard, and what it tells on standard error.
#include <filesystem>

#include "support/UnitLines.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

constexpr unsigned kUntouched = 4711;
constexpr char kReadFailed[] = "Prod.testserver: Read locked error in CommHandler\n";
constexpr char kNotOpen[] = "Serial port not open.";

class HandleTest : public UnitLines {
protected:
    /// Whether an open channel's driver is the one that uses a stream: each flushes its own way.
    bool usesStream(unsigned number) {
        m_calls.forget();
        EXPECT_THAT(channel(number).flush(), isSuccess());
        return m_calls.all() == std::vector<std::string>{"fflush"};
    }

    char m_buffer[16] = {};
    unsigned m_count = kUntouched;
};

} // namespace

TEST_F(HandleTest, EachChannelOpensItsOwnDeviceWithItsKindOfDriver) {
    for (unsigned number = 0; number < kChannels; ++number) {
        const std::string error = errorOutputOf([&] { openChannel(number); });
        EXPECT_EQ(error, "");
        for (unsigned other = 0; other < kChannels; ++other)
            EXPECT_THAT(m_lines[other].opened(), SizeIs(other <= number ? 1 : 0)) << number << other;
        EXPECT_EQ(usesStream(number), number == 3);
    }
}

TEST_F(HandleTest, AChannelsKindOfDriverCanBeChosen) {
    ASSERT_THAT(m_comm.setInterface(Comm::Off), isSuccess());
    ASSERT_THAT(m_comm.setInterfaceTyp(3, Comm::FileInterface), isSuccess());
    ASSERT_THAT(m_comm.setInterfaceTyp(0, Comm::StreamInterface), isSuccess());
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    openChannel(3);
    openChannel(0);
    EXPECT_FALSE(usesStream(3));
    EXPECT_TRUE(usesStream(0));
}

TEST_F(HandleTest, TheSettingsReachTheDriver) {
    ASSERT_THAT(channel(0).open(19200, 7, 2, Comm::Handle::Odd), isSuccess());
    EXPECT_EQ(::cfgetospeed(&m_calls.beforeRaw), static_cast<speed_t>(B19200));
    EXPECT_EQ(m_calls.beforeRaw.c_cflag & CSIZE, static_cast<tcflag_t>(CS7));
    EXPECT_EQ(m_calls.beforeRaw.c_cflag & (CSTOPB | PARENB | PARODD),
              static_cast<tcflag_t>(CSTOPB | PARENB | PARODD));
}

TEST_F(HandleTest, AFifthArgumentOfOpenIsIgnored) {
    for (const int ignored : {0, 1, -1}) {
        EXPECT_THAT(channel(2).open(9600, 8, 1, Comm::Handle::None, ignored), isSuccess());
        EXPECT_THAT(m_lines[2].opened(), SizeIs(1));
    }
    const termios attributes = m_lines[2].attributes();
    EXPECT_EQ(::cfgetospeed(&attributes), static_cast<speed_t>(B9600));
}

TEST_F(HandleTest, AnotherPathIsRefusedInSilence) {
    Line other;
    DeviceResult result;
    EXPECT_EQ(
        errorOutputOf([&] { result = channel(0).open(other.path(), 115200, 8, 1, Comm::Handle::None); }),
        "");
    EXPECT_THAT(result, isFailure(0x400, "This open Interface can't be used with Comm::Handle"));
    EXPECT_THAT(m_calls.all(), IsEmpty());
}

TEST_F(HandleTest, ADeviceThatIsMissingIsTold) {
    std::filesystem::remove("/dev/ser1");
    DeviceResult result;
    EXPECT_EQ(errorOutputOf([&] { result = channel(0).open(115200, 8, 1, Comm::Handle::None); }),
              "Prod.testserver: Could not open the device: "
              "Failed to open Device /dev/ser1: No such file or directory\n");
    EXPECT_THAT(result, isFailure(2, "Failed to open Device /dev/ser1: No such file or directory"));
}

TEST_F(HandleTest, SettingsThatAreInvalidAreTold) {
    DeviceResult result;
    EXPECT_EQ(errorOutputOf([&] { result = channel(0).open(115200, 8, 3, Comm::Handle::None); }),
              "Prod.testserver: Could not open the device: "
              "Unsupported number of stop bits for Device/dev/ser1\n");
    EXPECT_THAT(result, isFailure(0x503, "Unsupported number of stop bits for Device/dev/ser1"));
    EXPECT_THAT(m_lines[0].opened(), IsEmpty());

    EXPECT_EQ(errorOutputOf([&] { result = channel(3).open(300, 8, 1, Comm::Handle::None, 0); }),
              "Prod.testserver: Could not open the device: Invalid Baudrate 300\n");
    EXPECT_THAT(result, isFailure(0x501, "Invalid Baudrate 300"));
    bool open = false;
    EXPECT_THAT(channel(3).isOpen(open), isSuccess());
    EXPECT_TRUE(open);
}

TEST_F(HandleTest, IsOpenCopiesTheDriversFlag) {
    bool open = true;
    EXPECT_THAT(channel(1).isOpen(open), isSuccess());
    EXPECT_FALSE(open);
    openChannel(1);
    EXPECT_THAT(channel(1).isOpen(open), isSuccess());
    EXPECT_TRUE(open);
    EXPECT_THAT(channel(1).close(), isSuccess());
    EXPECT_THAT(channel(1).isOpen(open), isSuccess());
    EXPECT_FALSE(open);
}

TEST_F(HandleTest, BytesGoThroughInBothDirections) {
    for (const unsigned number : {0U, 3U}) {
        Comm::Handle& handle = openChannel(number);
        EXPECT_THAT(handle.write("question", 8), isSuccess());
        EXPECT_EQ(m_lines[number].receive(8), "question");
        m_lines[number].send("answer", 6);
        EXPECT_THAT(handle.read(m_count, m_buffer, 6, 60000), isSuccess());
        EXPECT_EQ(std::string(m_buffer, m_count), "answer");
        m_lines[number].send("more", 4);
        EXPECT_THAT(handle.receive(m_count, m_buffer, 16, 0), isSuccess());
        EXPECT_EQ(std::string(m_buffer, m_count), "more");
    }
}

TEST_F(HandleTest, AReadThatRunsOutOfTimeIsASuccess) {
    Comm::Handle& handle = openChannel(0);
    m_lines[0].send("ab", 2);
    EXPECT_EQ(errorOutputOf([&] {
                  EXPECT_THAT(handle.read(m_count, m_buffer, 16, 20), isSuccess());
                  EXPECT_EQ(m_count, 2U);
                  EXPECT_THAT(handle.read(m_count, m_buffer, 16, 20), isSuccess());
                  EXPECT_EQ(m_count, 0U);
              }),
              "");
}

TEST_F(HandleTest, AReadThatFailsIsToldAndLeavesTheCount) {
    DeviceResult result;
    EXPECT_EQ(errorOutputOf([&] { result = channel(0).read(m_count, m_buffer, 4, 0); }), kReadFailed);
    EXPECT_THAT(result, isFailure(0x400, kNotOpen));
    Comm::Handle& handle = openChannel(0);
    for (const char* function : {"poll", "read"}) {
        m_lines[0].send("x");
        m_calls.failNext(function, EIO);
        EXPECT_EQ(errorOutputOf([&] { result = handle.read(m_count, m_buffer, 4, 60000); }),
                  kReadFailed);
        EXPECT_EQ(result.code, EIO);
    }
    EXPECT_THAT(result, isFailure(EIO, "Failed to read from /dev/ser1: Input/output error"));
    EXPECT_EQ(m_count, kUntouched);
}

TEST_F(HandleTest, AReceiveThatFailsTellsItsCallerOnly) {
    const std::string error = errorOutputOf([&] {
        EXPECT_THAT(channel(3).receive(m_count, m_buffer, 4, 0), isFailure(0x400, kNotOpen));
        Comm::Handle& handle = openChannel(3);
        m_lines[3].hangUp();
        EXPECT_THAT(handle.receive(m_count, m_buffer, 4, 0),
                    isFailure(EIO, "Failed to read from /dev/usbserialadapter1: Input/output error"));
    });
    EXPECT_EQ(error, "");
    EXPECT_EQ(m_count, kUntouched);
}

TEST_F(HandleTest, OtherFailuresAreSilent) {
    const std::string error = errorOutputOf([&] {
        EXPECT_THAT(channel(0).write("x", 1), isFailure(0x400, kNotOpen));
        EXPECT_THAT(channel(0).flush(), isFailure(0x400, "Calling Flush on an invalid Handle"));
        EXPECT_THAT(channel(0).close(), isSuccess());
        Comm::Handle& handle = openChannel(0);
        m_calls.failNext("write", EIO);
        EXPECT_THAT(handle.write("x", 1),
                    isFailure(EIO, "Failed to write to /dev/ser1: Input/output error"));
        m_calls.failNext("tcflush", EIO);
        EXPECT_THAT(handle.flush(), isFailure(EIO, "Error flushing /dev/ser1: Input/output error"));
        m_calls.failNext("tcsetattr", EIO);
        EXPECT_THAT(handle.close(),
                    isFailure(EIO, "Failed to reset old Attribute for /dev/ser1: Input/output error"));
    });
    EXPECT_EQ(error, "");
}

TEST_F(HandleTest, AnAccessHoldsTheChannelsMutex) {
    Comm::Handle& handle = channel(0);
    m_calls.watch(&handle, sizeof handle);
    bool open = false;
    EXPECT_THAT(handle.open(115200, 8, 1, Comm::Handle::None), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("lock", "tcgetattr", "cfsetospeed", "cfsetispeed",
                                           "cfmakeraw", "tcsetattr", "tcflush", "unlock"));
    m_calls.forget();
    EXPECT_THAT(handle.isOpen(open), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("lock", "unlock"));
    m_calls.forget();
    EXPECT_THAT(handle.write("x", 1), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("lock", "write", "unlock"));
    m_calls.forget();
    EXPECT_THAT(handle.close(), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("lock", "tcsetattr", "unlock"));
}

TEST_F(HandleTest, AReadGivesTheMutexBackWhileItWaits) {
    Comm::Handle& handle = openChannel(0);
    m_calls.watch(&handle, sizeof handle);
    const auto gaveItBack = ElementsAre("lock", "unlock", "poll", "lock", "read", "unlock");
    m_lines[0].send("x", 1);
    EXPECT_THAT(handle.read(m_count, m_buffer, 1, 60000), isSuccess());
    EXPECT_THAT(m_calls.all(), gaveItBack);
    m_lines[0].send("x", 1);
    m_calls.forget();
    EXPECT_THAT(handle.receive(m_count, m_buffer, 1, 0), isSuccess());
    EXPECT_THAT(m_calls.all(), gaveItBack);
}

TEST_F(HandleTest, ACallersMutexIsIgnored) {
    Comm::Handle& handle = openChannel(0);
    System::Mutex own(System::Mutex::Normal);
    m_calls.watch(own);
    m_lines[0].send("x", 1);
    EXPECT_THAT(handle.read_locked(m_count, m_buffer, 1, 60000, &own), isSuccess());
    EXPECT_EQ(m_count, 1U);
    EXPECT_THAT(m_calls.all(), ElementsAre("poll", "read"));
}

TEST_F(HandleTest, FlushTakesNoLock) {
    for (const unsigned number : {0U, 3U}) {
        Comm::Handle& handle = openChannel(number);
        m_calls.watch(&handle, sizeof handle);
        m_lines[number].send("unread", 6);
        EXPECT_THAT(handle.flush(), isSuccess());
        EXPECT_THAT(m_calls.all(), ElementsAre(number == 3 ? "fflush" : "tcflush"));
        EXPECT_EQ(m_lines[number].waiting(), number == 3 ? 6 : 0);
    }
}

TEST_F(HandleTest, SwitchingOffNeitherClosesADeviceNorPutsItsSettingsBack) {
    for (const unsigned number : {0U, 3U})
        openChannel(number);
    const termios attributes = m_lines[0].attributes();
    m_calls.forget();
    EXPECT_THAT(m_comm.setInterface(Comm::Off), isSuccess());
    EXPECT_THAT(m_calls.all(), IsEmpty());
    EXPECT_THAT(m_lines[0].opened(), SizeIs(1));
    EXPECT_THAT(m_lines[3].opened(), SizeIs(1));
    EXPECT_TRUE(sameAttributes(m_lines[0].attributes(), attributes));

    // A new driver knows nothing of it.
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    bool open = true;
    EXPECT_THAT(channel(0).isOpen(open), isSuccess());
    EXPECT_FALSE(open);
}

TEST_F(HandleTest, SwitchingOnTwiceKeepsTheDrivers) {
    openChannel(0);
    const std::vector<int> opened = m_lines[0].opened();
    EXPECT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    bool open = false;
    EXPECT_THAT(channel(0).isOpen(open), isSuccess());
    EXPECT_TRUE(open);
    EXPECT_EQ(m_lines[0].opened(), opened);
}
