#include "terminal/StandardConsole.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <future>
#include <system_error>

#include "Keyboard.h"
#include "support/Pipe.h"
#include "support/Waiting.h"
#include "wire/Descriptor.h"

namespace station {
namespace {

constexpr std::size_t kMost = 100;

class StandardConsoleTest : public testing::Test {
protected:
    std::string shown(std::size_t count) const {
        std::string bytes(count, '\0');
        EXPECT_EQ(::read(m_output.readEnd.get(), bytes.data(), count), static_cast<ssize_t>(count));
        return bytes;
    }

    Interruption interruption;
    Pipe m_output;
};

TEST_F(StandardConsoleTest, MakesATerminalRawAndPutsItBack) {
    Keyboard keyboard;
    StandardConsole console(keyboard.terminal(), m_output.writeEnd.get(), interruption);
    EXPECT_TRUE(console.isTerminal());
    EXPECT_TRUE(keyboard.isCooked());
    testing::internal::CaptureStderr();
    console.begin();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "station: the line is open; Ctrl-] ends\r\n");
    EXPECT_FALSE(keyboard.isCooked());
    keyboard.send("\x03\r\x04");
    EXPECT_EQ(console.read(kPatience, kMost).bytes, "\x03\r\x04");
    console.end();
    EXPECT_TRUE(keyboard.isCooked());
}

TEST_F(StandardConsoleTest, KeepsWhatWasTypedAhead) {
    Keyboard keyboard;
    StandardConsole console(keyboard.terminal(), m_output.writeEnd.get(), interruption);
    keyboard.send("early");
    testing::internal::CaptureStderr();
    console.begin();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(console.read(kPatience, kMost).bytes, "early");
}

TEST_F(StandardConsoleTest, PutsATerminalBackWhenItGoes) {
    Keyboard keyboard;
    testing::internal::CaptureStderr();
    {
        StandardConsole console(keyboard.terminal(), m_output.writeEnd.get(), interruption);
        console.begin();
        EXPECT_FALSE(keyboard.isCooked());
    }
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(keyboard.isCooked());
}

TEST_F(StandardConsoleTest, TakesATerminalThatHasGoneForTheEnd) {
    Keyboard keyboard;
    StandardConsole console(keyboard.terminal(), m_output.writeEnd.get(), interruption);
    keyboard.hangUp();
    EXPECT_TRUE(console.read(kPatience, kMost).isEnded);
}

TEST_F(StandardConsoleTest, ReadsAPipeToItsEnd) {
    Pipe input;
    StandardConsole console(input.readEnd.get(), m_output.writeEnd.get(), interruption);
    EXPECT_FALSE(console.isTerminal());
    testing::internal::CaptureStderr();
    console.begin();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(::write(input.writeEnd.get(), "abc", 3), 3);
    Console::Input first = console.read(kPatience, 2);
    EXPECT_EQ(first.bytes, "ab");
    EXPECT_FALSE(first.isEnded);
    EXPECT_EQ(console.read(kPatience, 2).bytes, "c");
    input.writeEnd.reset();
    EXPECT_TRUE(console.read(kPatience, 2).isEnded);
    // From then on it only waits.
    const Seconds wait{0.02};
    const Deadline deadline = Deadline::after(wait);
    const Console::Input after = console.read(wait, 2);
    EXPECT_TRUE(deadline.expired());
    EXPECT_TRUE(after.isEnded);
    EXPECT_EQ(after.bytes, "");
}

TEST_F(StandardConsoleTest, WaitsNoLongerThanItIsTold) {
    Pipe input;
    StandardConsole console(input.readEnd.get(), m_output.writeEnd.get(), interruption);
    const Console::Input nothing = console.read(Seconds(0), kMost);
    EXPECT_EQ(nothing.bytes, "");
    EXPECT_FALSE(nothing.isEnded);
}

TEST_F(StandardConsoleTest, TellsAnInputThatCannotBeRead) {
    const System::Descriptor folder(::open("/", O_RDONLY | O_CLOEXEC));
    StandardConsole console(folder.get(), m_output.writeEnd.get(), interruption);
    EXPECT_THROW(console.read(Seconds(0), kMost), std::system_error);
}

TEST_F(StandardConsoleTest, ShowsEveryByte) {
    Pipe input;
    StandardConsole console(input.readEnd.get(), m_output.writeEnd.get(), interruption);
    const std::string bytes("\0\xFF\r\n", 4);
    console.write(bytes);
    console.write("");
    EXPECT_EQ(shown(4), bytes);
}

TEST_F(StandardConsoleTest, TellsAnOutputThatCannotBeWritten) {
    Pipe input;
    const System::Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    StandardConsole console(input.readEnd.get(), full.get(), interruption);
    EXPECT_THROW(console.write("a"), std::system_error);
}

TEST_F(StandardConsoleTest, StopsWaitingForAReaderAfterASignal) {
    ASSERT_EQ(::fcntl(m_output.writeEnd.get(), F_SETFL, O_NONBLOCK), 0);
    const std::string block(4096, 'x');
    while (::write(m_output.writeEnd.get(), block.data(), block.size()) > 0) {
    }
    ASSERT_EQ(::fcntl(m_output.writeEnd.get(), F_SETFL, 0), 0);
    Pipe input;
    StandardConsole console(input.readEnd.get(), m_output.writeEnd.get(), interruption);
    auto writing = std::async(std::launch::async, [&] { console.write("a"); });
    EXPECT_EQ(writing.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    interruption.raise(SIGTERM);
    EXPECT_THROW(writing.get(), Interrupted);
}

} // namespace
} // namespace station
