// The table of channels, without any device.
#include <thread>
#include <vector>

#include "devices/CommHandler.h"
#include "support/Results.h"

namespace {

constexpr unsigned kUntouched = 4711;
constexpr char kNotInitialized[] = "Device is not Initialized";
constexpr char kNoSuchHandle[] = "Handle does not exist";

class CommTest : public ::testing::Test {
protected:
    Comm::Handle& channel(unsigned number) {
        Comm::Handle* handle = nullptr;
        EXPECT_THAT(m_comm.device(&handle, number), isSuccess());
        return *handle;
    }

    /// By what it answers about itself: only a driver knows whether the device is open.
    static bool hasDriver(Comm::Handle& handle) {
        bool open = true;
        const DeviceResult result = handle.isOpen(open);
        EXPECT_EQ(open, result.failed());
        if (result.failed()) {
            EXPECT_THAT(result, isFailure(0x400, kNotInitialized));
        }
        return !result.failed();
    }

    static Comm::PhysicalInterface type(unsigned value) {
        return static_cast<Comm::PhysicalInterface>(value);
    }

    Comm m_comm;
};

} // namespace

TEST_F(CommTest, TheProcessHasOneManager) {
    std::vector<Comm*> seen(8, nullptr);
    std::vector<std::thread> threads;
    for (Comm*& manager : seen)
        threads.emplace_back([&manager] { manager = comm(); });
    for (std::thread& thread : threads)
        thread.join();
    for (const Comm* manager : seen)
        EXPECT_EQ(manager, Comm::getInstance());
    EXPECT_NE(comm(), nullptr);
}

TEST_F(CommTest, NoChannelIsHandedOutWhileTheInterfaceIsOff) {
    Comm::Handle* handle = nullptr;
    for (const unsigned number : {0U, 3U, 4U}) {
        EXPECT_THAT(m_comm.device(&handle, number), isFailure(0x400, "No Interface defined"));
        EXPECT_EQ(handle, nullptr);
    }
}

TEST_F(CommTest, EachChannelHasItsDevice) {
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    const char* const paths[] = {"/dev/ser1", "/dev/NAD/AT_port", "/dev/ser3", "/dev/usbserialadapter1"};
    for (unsigned number = 0; number < 4; ++number) {
        EXPECT_EQ(channel(number).devicePath(), paths[number]);
        EXPECT_TRUE(hasDriver(channel(number)));
    }
}

TEST_F(CommTest, AChannelKeepsItsHandle) {
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    Comm::Handle* const first = &channel(2);
    EXPECT_EQ(&channel(2), first);
    EXPECT_NE(&channel(1), first);
    ASSERT_THAT(m_comm.setInterface(Comm::Off), isSuccess());
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    EXPECT_EQ(&channel(2), first);
}

TEST_F(CommTest, ThereAreFourChannels) {
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    Comm::Handle* handle = nullptr;
    for (const unsigned number : {4U, 240U, 241U, 4294967295U}) {
        EXPECT_THAT(m_comm.device(&handle, number), isFailure(1285, kNoSuchHandle));
        EXPECT_EQ(handle, nullptr);
    }
}

TEST_F(CommTest, OnlyAChannelThatThereIsHasAType) {
    EXPECT_THAT(m_comm.setInterfaceTyp(3, Comm::FileInterface), isSuccess());
    EXPECT_THAT(m_comm.setInterfaceTyp(0, Comm::StreamInterface), isSuccess());
    EXPECT_THAT(m_comm.setInterfaceTyp(4, Comm::FileInterface), isFailure(0x505, kNoSuchHandle));
    EXPECT_THAT(m_comm.setInterfaceTyp(4294967295, Comm::FileInterface),
                isFailure(0x505, kNoSuchHandle));
}

TEST_F(CommTest, ATypeTakesEffectWhenTheDriversAreSwitchedOn) {
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    Comm::Handle& handle = channel(1);
    ASSERT_THAT(m_comm.setInterfaceTyp(1, type(7)), isSuccess());
    EXPECT_TRUE(hasDriver(handle));
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    EXPECT_TRUE(hasDriver(handle)) << "switched on already";
    ASSERT_THAT(m_comm.setInterface(Comm::Off), isSuccess());
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    EXPECT_FALSE(hasDriver(handle));
}

TEST_F(CommTest, ATypeThatIsNotKnownGetsNoDriver) {
    for (const unsigned value : {3U, 4U, 4294967295U}) {
        ASSERT_THAT(m_comm.setInterfaceTyp(1, type(value)), isSuccess());
        ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
        EXPECT_TRUE(hasDriver(channel(0)));
        EXPECT_FALSE(hasDriver(channel(1)));
        EXPECT_TRUE(hasDriver(channel(2)));
        EXPECT_TRUE(hasDriver(channel(3)));
        ASSERT_THAT(m_comm.setInterface(Comm::Off), isSuccess());
    }
}

TEST_F(CommTest, SwitchingOffReleasesTheDrivers) {
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    std::vector<Comm::Handle*> handles;
    for (unsigned number = 0; number < 4; ++number)
        handles.push_back(&channel(number));
    ASSERT_THAT(m_comm.setInterface(Comm::Off), isSuccess());
    for (Comm::Handle* handle : handles)
        EXPECT_FALSE(hasDriver(*handle));
    Comm::Handle* handle = nullptr;
    EXPECT_THAT(m_comm.device(&handle, 0), isFailure(0x400, "No Interface defined"));
}

TEST_F(CommTest, AnyOtherInterfaceReleasesTheDriversButHandsOutChannels) {
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    ASSERT_THAT(m_comm.setInterface(static_cast<Comm::Interface>(2)), isSuccess());
    for (unsigned number = 0; number < 4; ++number)
        EXPECT_FALSE(hasDriver(channel(number)));
}

TEST_F(CommTest, AChannelWithoutAKindOfDriverStopsTheSwitchingOn) {
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    std::vector<Comm::Handle*> handles;
    for (unsigned number = 0; number < 4; ++number)
        handles.push_back(&channel(number));
    ASSERT_THAT(m_comm.setInterface(Comm::Off), isSuccess());
    ASSERT_THAT(m_comm.setInterfaceTyp(2, Comm::NoInterface), isSuccess());

    EXPECT_THAT(m_comm.setInterface(Comm::On), isFailure(0x400, "Not implemented"));
    Comm::Handle* handle = nullptr;
    EXPECT_THAT(m_comm.device(&handle, 0), isFailure(0x400, "No Interface defined"));
    EXPECT_TRUE(hasDriver(*handles[0]));
    EXPECT_TRUE(hasDriver(*handles[1]));
    EXPECT_FALSE(hasDriver(*handles[2]));
    EXPECT_FALSE(hasDriver(*handles[3]));

    // It is off already as far as it knows.
    EXPECT_THAT(m_comm.setInterface(Comm::Off), isSuccess());
    EXPECT_TRUE(hasDriver(*handles[0]));

    ASSERT_THAT(m_comm.setInterfaceTyp(2, Comm::FileInterface), isSuccess());
    EXPECT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    for (Comm::Handle* each : handles)
        EXPECT_TRUE(hasDriver(*each));
}

TEST_F(CommTest, AFirstChannelWithoutAKindOfDriverLeavesNoneWithOne) {
    ASSERT_THAT(m_comm.setInterfaceTyp(0, Comm::NoInterface), isSuccess());
    EXPECT_THAT(m_comm.setInterface(Comm::On), isFailure(1024, "Not implemented"));
    EXPECT_THAT(m_comm.setInterface(static_cast<Comm::Interface>(9)), isSuccess());
    for (unsigned number = 0; number < 4; ++number)
        EXPECT_FALSE(hasDriver(channel(number)));
}

TEST_F(CommTest, AnOperationWithoutADriverIsRefusedInSilence) {
    ASSERT_THAT(m_comm.setInterface(static_cast<Comm::Interface>(2)), isSuccess());
    Comm::Handle& handle = channel(0);
    ::testing::internal::CaptureStderr();
    char buffer[4] = {};
    unsigned count = kUntouched;
    bool open = true;
    System::Mutex mutex(System::Mutex::Normal);
    const auto refused = isFailure(0x400, kNotInitialized);
    EXPECT_THAT(handle.isOpen(open), refused);
    EXPECT_TRUE(open);
    EXPECT_THAT(handle.open(115200, 8, 1, Comm::Handle::None), refused);
    EXPECT_THAT(handle.open(115200, 8, 1, Comm::Handle::None, 5), refused);
    EXPECT_THAT(handle.open(300, 9, 3, Comm::Handle::Odd), refused);
    EXPECT_THAT(handle.close(), refused);
    EXPECT_THAT(handle.write("abc", 3), refused);
    EXPECT_THAT(handle.read(count, buffer, 4, 10), refused);
    EXPECT_THAT(handle.read_locked(count, buffer, 4, 10, &mutex), refused);
    EXPECT_THAT(handle.receive(count, buffer, 4, 0), refused);
    EXPECT_EQ(count, kUntouched);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(CommTest, AChannelsDeviceIsFixed) {
    const auto refused = isFailure(1024, "This open Interface can't be used with Comm::Handle");
    ::testing::internal::CaptureStderr();
    ASSERT_THAT(m_comm.setInterface(static_cast<Comm::Interface>(2)), isSuccess());
    EXPECT_THAT(channel(0).open("/dev/ser1", 115200, 8, 1, Comm::Handle::None), refused);
    ASSERT_THAT(m_comm.setInterface(Comm::On), isSuccess());
    EXPECT_THAT(channel(0).open("/dev/ser1", 115200, 8, 1, Comm::Handle::None), refused);
    EXPECT_THAT(channel(3).open("", 300, 9, 3, Comm::Handle::Odd), refused);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}
