#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>

#include <chrono>
#include <functional>
#include <ostream>
#include <string>

#include "AsciiDaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "wire/Descriptor.h"

namespace {

constexpr std::chrono::seconds kObservation{1};
constexpr std::chrono::milliseconds kLittle{200};
// After some that follow each other quickly there is one a second.
constexpr std::size_t kQuickAttempts = 20;

void expectServedByTcp() {
    Connection station;
    expectExchange(station, request("other"), unknown("other"));
}

TEST(AsciiAbsentDevice, IsWaitedForFromTheStart) {
    Adapter adapter;
    adapter.pull();
    const Daemon daemon(asciiStart());
    expectServedByTcp();
    const auto before = processorTime(daemon.pid());
    observeFor(kObservation);
    EXPECT_LE(processorTime(daemon.pid()) - before, kLittle);
    EXPECT_TRUE(openTerminals(daemon.pid()).empty());
    adapter.plug();
    expectExchange(adapter, "", banner(daemon));
    expectNothingMore(adapter);
    expectHealthy(daemon);
}

TEST(AsciiAbsentDevice, MayBeALinkToNowhere) {
    Adapter adapter;
    adapter.pull();
    makeLink(Adapter::kNode, "/dev/nowhere");
    const Daemon daemon(asciiStart());
    expectServedByTcp();
    observeFor(kObservation);
    EXPECT_TRUE(isBannerOnly(daemon.error())) << daemon.error();
    adapter.plug();
    expectExchange(adapter, "", banner(daemon));
    expectNothingMore(adapter);
    expectHealthy(daemon);
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

struct NoTerminal {
    const char* name;
    std::function<void()> make;
    std::string code;
    std::string message;
};

void PrintTo(const NoTerminal& device, std::ostream* out) {
    *out << device.name;
}

const NoTerminal kNoTerminals[] = {
    {"file", [] { writeFile(Adapter::kNode, "\2foo\x03\n"); }, "19",
     "Failed get original Device Attributes of /dev/usbserialadapter1: Inappropriate ioctl for device"},
    {"null", [] { makeLink(Adapter::kNode, "/dev/null"); }, "19",
     "Failed get original Device Attributes of /dev/usbserialadapter1: Inappropriate ioctl for device"},
    {"fifo", [] { makeFifo(Adapter::kNode); }, "19",
     "Failed get original Device Attributes of /dev/usbserialadapter1: Inappropriate ioctl for device"},
    {"folder", [] { makeFolder(Adapter::kNode); }, "15",
     "Failed to open Device /dev/usbserialadapter1: Is a directory"},
};

class AsciiNoTerminalTest : public testing::TestWithParam<NoTerminal> {
protected:
    /// What each attempt to open the node writes to standard error.
    static std::string complaint() {
        return "Prod.testserver: Could not open the device: " + GetParam().message + "\n" +
               "Prod.testserver: ~ ### ~ Exception: ID: 0x" + GetParam().code +
               " DESC: " + GetParam().message + "\n";
    }

    /// How many whole complaints there are, and nothing else behind the banner.
    static std::size_t complaintsIn(std::string error) {
        std::size_t count = 0;
        const std::string text = complaint();
        while (endsWith(error, text)) {
            error.resize(error.size() - text.size());
            ++count;
        }
        EXPECT_TRUE(isBannerOnly(error)) << error;
        return count;
    }
};

TEST_P(AsciiNoTerminalTest, IsReportedAndTriedAgainWithoutHaste) {
    Adapter adapter;
    adapter.pull();
    GetParam().make();
    const auto start = std::chrono::steady_clock::now();
    const Daemon daemon(asciiStart());
    expectServedByTcp();
    ASSERT_TRUE(daemon.waitForError(complaint() + complaint()));
    const auto descriptors = openDescriptors(daemon.pid()).size();
    const auto before = processorTime(daemon.pid());
    observeFor(kObservation);
    EXPECT_LE(processorTime(daemon.pid()) - before, kLittle);
    EXPECT_LE(openDescriptors(daemon.pid()).size(), descriptors);

    removeFile(Adapter::kNode);
    adapter.plug();
    expectExchange(adapter, "", banner(daemon));
    expectNothingMore(adapter);
    std::string error;
    ASSERT_TRUE(eventually([&] {
        error = daemon.error();
        return endsWith(error, complaint());
    }));
    const std::size_t attempts = complaintsIn(error);
    EXPECT_GE(attempts, 2U);
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_LE(attempts, kQuickAttempts + static_cast<std::size_t>(taken / std::chrono::seconds(1)));
    expectServedByTcp();
}

INSTANTIATE_TEST_SUITE_P(Kinds, AsciiNoTerminalTest, testing::ValuesIn(kNoTerminals),
                         [](const auto& information) { return information.param.name; });

class AsciiDeviceTest : public AsciiDaemonTest {};

TEST_F(AsciiDeviceTest, IsSetTo115200Baud8N1) {
    const System::Descriptor terminal(
        ::open(adapter.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    termios settings{};
    ASSERT_EQ(::tcgetattr(terminal.get(), &settings), 0);
    EXPECT_EQ(::cfgetospeed(&settings), static_cast<speed_t>(B115200));
    EXPECT_EQ(::cfgetispeed(&settings), static_cast<speed_t>(B115200));
    EXPECT_EQ(settings.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_EQ(settings.c_cflag & (CSTOPB | PARENB | PARODD), 0U);
    EXPECT_EQ(settings.c_iflag & (ICRNL | INLCR | IGNCR | IXON | ISTRIP), 0U);
    EXPECT_EQ(settings.c_oflag & OPOST, 0U);
    EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0U);
    EXPECT_EQ(settings.c_cc[VMIN], 1);
    EXPECT_EQ(settings.c_cc[VTIME], 0);
}

TEST_F(AsciiDeviceTest, IsOpenOnceAndNotForChildren) {
    EXPECT_EQ(openTerminals(daemon.pid()).size(), 1U);
    EXPECT_TRUE(inheritableDescriptors(daemon.pid()).empty());
}

TEST_F(AsciiDeviceTest, IsReadOnlyWhileItsNodeExists) {
    removeFile(Adapter::kNode);
    // The daemon was waiting for this line already.
    expectExchange(adapter, request("one"), unknown("one"));
    adapter.send(request("two"));
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
    expectServedByTcp();
    makeLink(Adapter::kNode, adapter.path());
    expectExchange(adapter, "", unknown("two"));
}

TEST_F(AsciiDeviceTest, IsOpenedUnderTheNodeThatTakesItsPlace) {
    adapter.plug(); // the old line hangs up only after the node has changed
    expectBanner();
    EXPECT_EQ(openTerminals(daemon.pid()).size(), 1U);
}

} // namespace
