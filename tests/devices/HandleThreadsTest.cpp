// Several threads on the channels at once.
#include <atomic>
#include <future>
#include <thread>

#include "support/UnitLines.h"
#include "support/Waiting.h"

namespace {

/// What "does not happen" is given to happen.
constexpr std::chrono::milliseconds kMoment{50};

class HandleThreadsTest : public UnitLines {
protected:
    /// Holds up the next call of `function`, whoever makes it, until `release`.
    void holdUp(const std::string& function) {
        m_calls.script(function, {DeviceCalls::after([this] {
                           m_isHeld = true;
                           m_released.get_future().wait();
                       })});
    }

    bool isHeldUp() {
        return eventually([this] { return m_isHeld.load(); });
    }

    void release() { m_released.set_value(); }

private:
    std::atomic<bool> m_isHeld{false};
    std::promise<void> m_released;
};

} // namespace

TEST_F(HandleThreadsTest, APendingReadHoldsUpNoWriter) {
    for (const unsigned number : {0U, 3U}) {
        Comm::Handle& handle = openChannel(number);
        std::atomic<bool> waits{false};
        std::atomic<bool> hasRead{false};
        m_calls.script("poll", {DeviceCalls::after([&] { waits = true; })});
        std::thread reader([&] {
            char buffer[8] = {};
            unsigned count = 0;
            EXPECT_THAT(handle.read(count, buffer, 8, 0), isSuccess());
            EXPECT_EQ(std::string(buffer, count), "answer");
            hasRead = true;
        });
        ASSERT_TRUE(eventually([&] { return waits.load(); }));
        bool open = false;
        EXPECT_THAT(handle.write("question", 8), isSuccess());
        EXPECT_THAT(handle.isOpen(open), isSuccess());
        EXPECT_TRUE(open);
        EXPECT_EQ(m_lines[number].receive(8), "question");
        EXPECT_FALSE(hasRead);
        m_lines[number].send("answer");
        reader.join();
    }
}

TEST_F(HandleThreadsTest, AWriterHoldsUpTheOthersOfItsChannel) {
    Comm::Handle& handle = openChannel(0);
    holdUp("write");
    std::thread first([&] { EXPECT_THAT(handle.write("one", 3), isSuccess()); });
    ASSERT_TRUE(isHeldUp());
    std::atomic<bool> done{false};
    std::thread second([&] {
        EXPECT_THAT(handle.write("two", 3), isSuccess());
        done = true;
    });
    EXPECT_FALSE(eventually([&] { return done.load(); }, kMoment));
    release();
    first.join();
    second.join();
    EXPECT_EQ(m_lines[0].receive(6), "onetwo");
}

TEST_F(HandleThreadsTest, AReadThatTouchesTheDeviceHoldsUpAWriter) {
    Comm::Handle& handle = openChannel(0);
    m_lines[0].send("ab", 2);
    holdUp("read");
    std::thread reader([&] {
        char buffer[2];
        unsigned count = 0;
        EXPECT_THAT(handle.read(count, buffer, 2, 0), isSuccess());
        EXPECT_EQ(count, 2U);
    });
    ASSERT_TRUE(isHeldUp());
    std::atomic<bool> done{false};
    std::thread writer([&] {
        EXPECT_THAT(handle.write("x", 1), isSuccess());
        done = true;
    });
    EXPECT_FALSE(eventually([&] { return done.load(); }, kMoment));
    release();
    reader.join();
    writer.join();
    EXPECT_EQ(m_lines[0].receive(1), "x");
}

TEST_F(HandleThreadsTest, ChannelsDoNotHoldUpEachOther) {
    Comm::Handle& busy = openChannel(0);
    for (unsigned number = 1; number < kChannels; ++number)
        openChannel(number);
    holdUp("write");
    std::thread writer([&] { EXPECT_THAT(busy.write("late", 4), isSuccess()); });
    ASSERT_TRUE(isHeldUp());
    for (unsigned number = 1; number < kChannels; ++number) {
        bool open = false;
        EXPECT_THAT(channel(number).write("at once", 7), isSuccess());
        EXPECT_EQ(m_lines[number].receive(7), "at once");
        EXPECT_THAT(channel(number).isOpen(open), isSuccess());
        EXPECT_TRUE(open);
    }
    EXPECT_TRUE(m_lines[0].isSilent());
    release();
    writer.join();
    EXPECT_EQ(m_lines[0].receive(4), "late");
}

TEST_F(HandleThreadsTest, FlushIsNotHeldUp) {
    Comm::Handle& handle = openChannel(0);
    holdUp("write");
    std::thread writer([&] { EXPECT_THAT(handle.write("x", 1), isSuccess()); });
    ASSERT_TRUE(isHeldUp());
    EXPECT_THAT(handle.flush(), isSuccess());
    release();
    writer.join();
    EXPECT_EQ(m_lines[0].receive(1), "x");
}

TEST_F(HandleThreadsTest, APortThatIsClosedDuringAReadEndsItWithAMessage) {
    Comm::Handle& handle = openChannel(2);
    std::atomic<bool> waits{false};
    m_calls.script("poll", {DeviceCalls::after([&] { waits = true; })});
    DeviceResult result;
    unsigned count = 4711;
    const std::string error = errorOutputOf([&] {
        std::thread reader([&] {
            char buffer[4];
            result = handle.read(count, buffer, 4, 0);
        });
        EXPECT_TRUE(eventually([&] { return waits.load(); }));
        EXPECT_THAT(handle.close(), isSuccess());
        reader.join();
    });
    EXPECT_THAT(result, isFailure(0x400, "Serial port not open."));
    EXPECT_EQ(count, 4711U);
    EXPECT_EQ(error, "Prod.testserver: Read locked error in CommHandler\n");
}

TEST_F(HandleThreadsTest, TwoReadersOfOneByteHoldUpNobody) {
    for (const unsigned number : {0U, 3U}) {
        Comm::Handle& handle = openChannel(number);
        std::atomic<int> waiting{0};
        std::atomic<int> got{0};
        m_calls.script("poll",
                       {DeviceCalls::after([&] { ++waiting; }), DeviceCalls::after([&] { ++waiting; })});
        const auto readOne = [&](unsigned timeoutMs) {
            char byte = 0;
            unsigned count = 0;
            EXPECT_THAT(handle.read(count, &byte, 1, timeoutMs), isSuccess());
            got += static_cast<int>(count);
        };
        std::thread patient(readOne, 0);
        std::thread hasty(readOne, 1000);
        ASSERT_TRUE(eventually([&] { return waiting == 2; }));
        m_lines[number].send("x");
        ASSERT_TRUE(eventually([&] { return got == 1; }));
        EXPECT_THAT(handle.write("written", 7), isSuccess());
        EXPECT_EQ(m_lines[number].receive(7), "written");
        hasty.join();
        if (got == 1)
            m_lines[number].send("yz"); // either may have had the first one
        patient.join();
        EXPECT_GE(got, 1);
    }
}

TEST_F(HandleThreadsTest, ADeafFarEndHoldsUpNobodyButWhoTransmits) {
    Comm::Handle& handle = openChannel(3);
    const std::string much(500000, 'x');
    std::thread transmitter([&] { EXPECT_THAT(handle.transmit(much), isSuccess()); });
    ASSERT_TRUE(eventually([&] { return !m_lines[3].isSilent(); }));
    bool open = false;
    unsigned count = 4711;
    char byte = 0;
    EXPECT_THAT(handle.isOpen(open), isSuccess());
    EXPECT_THAT(handle.read(count, &byte, 1, 20), isSuccess());
    EXPECT_EQ(count, 0U);
    handle.write("refused or kept", 15);
    EXPECT_EQ(m_lines[3].receive(much.size()), much);
    transmitter.join();
}

TEST_F(HandleThreadsTest, ManyWritersDoNotMixTheirBytes) {
    constexpr int kWriters = 4;
    constexpr int kLines = 50;
    Comm::Handle& handle = openChannel(3);
    std::vector<std::thread> writers;
    for (int writer = 0; writer < kWriters; ++writer)
        writers.emplace_back([&handle, writer] {
            const std::string text(9, static_cast<char>('a' + writer));
            const std::string line = text + "\n";
            for (int count = 0; count < kLines; ++count)
                EXPECT_THAT(handle.write(line.data(), 10), isSuccess());
        });
    int whole = 0;
    for (int count = 0; count < kWriters * kLines; ++count) {
        const std::string line = m_lines[3].receive(10);
        whole += line.size() == 10 && line == std::string(9, line.front()) + "\n" ? 1 : 0;
    }
    EXPECT_EQ(whole, kWriters * kLines);
    for (std::thread& writer : writers)
        writer.join();
}
