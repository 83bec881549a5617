// Bytes that the device does not take at once: they wait, whole and in their order, for whoever waits
// for the line next.
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <future>
#include <string>
#include <thread>

#include "support/DriverFixture.h"
#include "support/Waiting.h"
#include "wire/Descriptor.h"

namespace {

/// For its lifetime the process gets one new file descriptor, and no second one.
class OneMoreDescriptor {
public:
    OneMoreDescriptor() {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &m_before), 0);
        const System::Descriptor lowestFree(::dup(STDERR_FILENO));
        rlimit scarce = m_before;
        scarce.rlim_cur = static_cast<rlim_t>(lowestFree.get()) + 1;
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &scarce), 0);
    }
    ~OneMoreDescriptor() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    OneMoreDescriptor(const OneMoreDescriptor&) = delete;
    OneMoreDescriptor& operator=(const OneMoreDescriptor&) = delete;

private:
    rlimit m_before{};
};

class TransmitTest : public DriverFixture {
protected:
    TransmitTest() { EXPECT_THAT(openDriver(), isSuccess()); }

    /// From another thread, as the channel does it.
    std::future<DeviceResult> transmit(const std::string& bytes) {
        return std::async(std::launch::async, [this, bytes] {
            const System::Lock lock(m_mutex);
            return m_driver->transmit(bytes, &m_mutex);
        });
    }

    /// More than the line takes, of which the beginning has reached the far end.
    std::future<DeviceResult> beginToTransmit() {
        std::future<DeviceResult> done = transmit(m_much);
        EXPECT_EQ(m_line.receive(10).size(), 10U);
        return done;
    }

    DeviceResult post(const std::string& bytes) {
        const System::Lock lock(m_mutex);
        return m_driver->post(bytes);
    }

    void close() {
        const System::Lock lock(m_mutex);
        EXPECT_THAT(m_driver->close(), isSuccess());
    }

    /// From another thread, without limit.
    std::thread readByte() {
        return std::thread([this] {
            char byte = 0;
            unsigned count = 0;
            const System::Lock lock(m_mutex);
            EXPECT_THAT(m_driver->read_locked(count, &byte, 1, 0, &m_mutex), isSuccess());
        });
    }

    /// More than the line takes before its far end reads.
    const std::string m_much = std::string(500000, 'x');
    System::Mutex m_mutex{System::Mutex::Normal};
};

} // namespace

TEST_P(TransmitTest, ReturnsWhenTheLineHasTakenAllOfIt) {
    std::future<DeviceResult> done = transmit(m_much + "end");
    EXPECT_EQ(m_line.receive(m_much.size() + 3), m_much + "end");
    EXPECT_THAT(done.get(), isSuccess());
    EXPECT_TRUE(m_line.isSilent());
}

TEST_P(TransmitTest, HoldsNoMutexWhileItWaits) {
    std::future<DeviceResult> done = transmit(m_much);
    m_line.send("from the far end", 16);
    char buffer[16];
    unsigned count = 0;
    {
        const System::Lock lock(m_mutex);
        EXPECT_THAT(m_driver->read_locked(count, buffer, 16, kLongMs, &m_mutex), isSuccess());
    }
    EXPECT_EQ(std::string(buffer, count), "from the far end");
    EXPECT_EQ(m_line.receive(m_much.size()), m_much);
    EXPECT_THAT(done.get(), isSuccess());
}

TEST_P(TransmitTest, EndsWhenThePortIsClosed) {
    std::future<DeviceResult> done = beginToTransmit();
    close();
    EXPECT_THAT(done.get(), isFailure(0x400, "Serial port not open."));
}

TEST_P(TransmitTest, EndsWhenThePortIsClosedAndOpenedAgain) {
    std::future<DeviceResult> done = beginToTransmit();
    {
        const System::Lock lock(m_mutex);
        EXPECT_THAT(openDriver(), isSuccess());
    }
    EXPECT_THAT(done.get(), isFailure(0x400, "Serial port not open."));
    EXPECT_TRUE(isOpen());
}

TEST_P(TransmitTest, EndsWhenTheLineHasGone) {
    std::future<DeviceResult> done = beginToTransmit();
    m_line.hangUp();
    EXPECT_THAT(done.get(), isFailure(EIO, textFor("Failed to write to ", EIO)));
}

TEST_P(TransmitTest, AWaitThatFailsIsTold) {
    m_calls.script("write", {DeviceCalls::failing(EAGAIN)});
    m_calls.failNext("poll", ENOMEM);
    EXPECT_THAT(transmit("abc").get(), isFailure(ENOMEM, textFor("Failed to select from ", ENOMEM)));
}

TEST_P(TransmitTest, AClosedDriverTakesNothing) {
    ASSERT_THAT(m_driver->close(), isSuccess());
    EXPECT_THAT(transmit("abc").get(), isFailure(0x400, "Serial port not open."));
    EXPECT_THAT(post("abc"), isFailure(0x400, "Serial port not open."));
}

TEST_P(TransmitTest, WithoutDescriptorsToWakeItWithItLooksByItself) {
    ASSERT_THAT(m_driver->close(), isSuccess());
    {
        const OneMoreDescriptor justTheDevice;
        ASSERT_THAT(openDriver(), isSuccess());
    }
    std::future<DeviceResult> done = beginToTransmit();
    close();
    EXPECT_THAT(done.get(), isFailure(0x400, "Serial port not open."));
}

TEST_P(TransmitTest, WhatIsPostedNeverWaits) {
    EXPECT_THAT(post(m_much), isSuccess());
    EXPECT_THAT(post("more"), isFailure(EAGAIN, textFor("Failed to write to ", EAGAIN)));
}

TEST_P(TransmitTest, WhatIsPostedGoesOutWhileSomebodyReads) {
    EXPECT_THAT(post(m_much), isSuccess());
    std::future<std::string> received =
        std::async(std::launch::async, [this] { return m_line.receive(m_much.size()); });
    char byte = 0;
    unsigned count = 0;
    std::thread station([&] {
        EXPECT_EQ(received.get(), m_much);
        m_line.send("!");
    });
    {
        const System::Lock lock(m_mutex);
        EXPECT_THAT(m_driver->read_locked(count, &byte, 1, 0, &m_mutex), isSuccess());
    }
    station.join();
    EXPECT_EQ(byte, '!');
}

TEST_P(TransmitTest, AReaderThatWaitsAlreadySendsWhatIsPosted) {
    std::atomic<bool> waits{false};
    m_calls.script("poll", {DeviceCalls::after([&] { waits = true; })});
    std::thread reader = readByte();
    ASSERT_TRUE(eventually([&] { return waits.load(); }));
    EXPECT_THAT(post(m_much), isSuccess());
    EXPECT_EQ(m_line.receive(m_much.size()), m_much);
    m_line.send("!");
    reader.join();
}

TEST_P(TransmitTest, WhatIsPostedMeanwhileComesWholeBehindIt) {
    const std::string some(200000, 'y');
    std::future<DeviceResult> done = transmit(some);
    ASSERT_TRUE(eventually([this] { return !m_line.isSilent(); }));
    if (!usesStream()) {
        EXPECT_THAT(post("behind"), isFailure(EAGAIN, textFor("Failed to write to ", EAGAIN)));
        EXPECT_EQ(m_line.receive(some.size()), some);
        EXPECT_THAT(done.get(), isSuccess());
        return;
    }
    {
        const System::Lock lock(m_mutex);
        EXPECT_THAT(m_driver->write("behind", 6), isSuccess());
    }
    EXPECT_THAT(post("last"), isSuccess());
    std::thread transmitter([&] { EXPECT_THAT(transmit("!").get(), isSuccess()); });
    EXPECT_EQ(m_line.receive(some.size() + 11), some + "behindlast!");
    EXPECT_THAT(done.get(), isSuccess());
    transmitter.join();
}

TEST_P(TransmitTest, WhatIsPostedMeanwhileIsLeftToAReader) {
    if (!usesStream())
        return; // the other driver takes nothing meanwhile
    const std::string some(200000, 'y');
    std::promise<void> returned;
    std::atomic<bool> waits{false};
    // The reader looks at the line only when the transmitter has gone.
    m_calls.script("poll", {DeviceCalls::after([&] {
                       waits = true;
                       returned.get_future().wait();
                   })});
    std::thread reader = readByte();
    EXPECT_TRUE(eventually([&] { return waits.load(); }));
    std::future<DeviceResult> done = transmit(some);
    EXPECT_TRUE(eventually([this] { return !m_line.isSilent(); }));
    EXPECT_THAT(post(m_much), isSuccess());
    EXPECT_EQ(m_line.receive(some.size()), some);
    EXPECT_THAT(done.get(), isSuccess());
    returned.set_value();
    EXPECT_EQ(m_line.receive(m_much.size()), m_much);
    m_line.send("!");
    reader.join();
}

TEST_P(TransmitTest, WhatATransmissionThatFailsLeavesIsLeftToAReader) {
    std::promise<void> returned;
    std::atomic<bool> waits{false};
    m_calls.script("poll", {DeviceCalls::after([&] {
                                waits = true;
                                returned.get_future().wait();
                            }),
                            DeviceCalls::failing(ENOMEM)});
    std::thread reader = readByte();
    EXPECT_TRUE(eventually([&] { return waits.load(); }));
    EXPECT_THAT(transmit(m_much).get(), isFailure(ENOMEM, textFor("Failed to select from ", ENOMEM)));
    returned.set_value();
    EXPECT_EQ(m_line.receive(m_much.size()), m_much);
    m_line.send("!");
    reader.join();
}

WITH_BOTH_DRIVERS(TransmitTest);
