#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "platform/Descriptors.h"
#include "support/DaemonTest.h"
#include "support/ProcessFigures.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

constexpr char kDiagnostic[] = "Prod.testserver: Read locked error in CommHandler\n";

/// A pipe that the daemon writes to and that nobody reads until the test does.
struct Pipe {
    Pipe() {
        EXPECT_TRUE(System::openPipe(reading, writing));
        ::fcntl(reading.get(), F_SETFL, O_NONBLOCK);
    }

    /// All that it holds now.
    std::string take() const {
        std::string text;
        std::array<char, 65536> bytes{};
        for (ssize_t count = 0; (count = ::read(reading.get(), bytes.data(), bytes.size())) > 0;)
            text.append(bytes.data(), static_cast<std::size_t>(count));
        return text;
    }

    System::Descriptor reading;
    System::Descriptor writing;
};

Daemon startWith(std::optional<int> DaemonStart::*stream, Pipe& pipe) {
    const System::Descriptor writing = std::move(pipe.writing); // for the daemon alone
    DaemonStart start;
    start.*stream = writing.get();
    return Daemon(start);
}

/// The number in front of "bytes for NAME were lost", if that is there.
std::size_t lossIn(const std::string& error, const std::string& stream) {
    const std::size_t end = error.find(" bytes for " + stream + " were lost\n");
    if (end == std::string::npos)
        return 0;
    return std::stoul(error.substr(error.rfind(' ', end - 1) + 1));
}

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
        ++count;
    return count;
}

std::string serialNumber() {
    return answer("status base64(" + base64(contentOf(kSerialNumberFile)) + ")");
}

TEST(BlockedStandardOutput, HoldsUpNoAnswer) {
    constexpr std::size_t kNoise = 100000;
    constexpr std::size_t kRounds = 20;
    Pipe pipe;
    const Daemon daemon = startWith(&DaemonStart::standardOutput, pipe);
    settledThreadCount(daemon.pid()); // before that nothing waits: what the stream does not take is lost
    Connection noisy;
    Connection other;
    for (std::size_t round = 0; round < kRounds; ++round) {
        expectExchange(noisy, request("one " + std::string(kNoise, '%')), unknown("one"));
        expectExchange(noisy, request("status 02"), serialNumber());
        expectExchange(other, request("status 02"), serialNumber());
    }
    EXPECT_TRUE(isBannerOnly(daemon.error())) << daemon.error();

    std::string output;
    std::size_t lost = 0;
    EXPECT_TRUE(eventually([&] {
        output += pipe.take();
        lost = lossIn(daemon.error(), "standard output");
        return lost > 0 && output.size() + lost >= kRounds * kNoise;
    }));
    EXPECT_EQ(output.size() + lost, kRounds * kNoise);
    EXPECT_EQ(output.find_first_not_of('%'), std::string::npos);
    EXPECT_EQ(countOf(daemon.error(), "were lost"), 1u);
    expectExchange(noisy, request("one !"), unknown("one"));
    EXPECT_TRUE(eventually([&] { return pipe.take() == "!"; }));
}

TEST(BlockedStandardError, HoldsUpNoAnswer) {
    constexpr std::size_t kDiagnostics = 8000;
    Pipe pipe;
    const Daemon daemon = startWith(&DaemonStart::standardError, pipe);
    settledThreadCount(daemon.pid()); // before that nothing waits: what the stream does not take is lost
    Connection noisy;
    Connection other;
    for (std::size_t round = 0; round < kDiagnostics; ++round)
        expectExchange(noisy, request("serial getall 2"),
                       answer("Info \"Serial port not open., errorcode: 1024\"") +
                           answer("serial Error 0xA000000"));
    expectExchange(noisy, request("status 02"), serialNumber());
    expectExchange(other, request("status 02"), serialNumber());

    std::string error;
    EXPECT_TRUE(eventually([&] {
        error += pipe.take();
        return lossIn(error, "standard error") > 0;
    }));
    const std::size_t length = sizeof kDiagnostic - 1;
    EXPECT_EQ(lossIn(error, "standard error") + length * countOf(error, kDiagnostic),
              length * kDiagnostics);
    EXPECT_EQ(countOf(error, "were lost"), 1u);
    expectExchange(
        noisy, request("serial getall 2"),
        answer("Info \"Serial port not open., errorcode: 1024\"") + answer("serial Error 0xA000000"));
    EXPECT_TRUE(eventually([&] { return pipe.take() == kDiagnostic; }));
}

TEST(FullStandardStreams, AreNoMatter) {
    const System::Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(full);
    DaemonStart start;
    start.standardOutput = full.get();
    start.standardError = full.get();
    const Daemon daemon(start);
    Connection station;
    for (int round = 0; round < 100; ++round) {
        expectExchange(station, "\x02one ---...\x03\n", unknown("one"));
        expectExchange(station, request("serial getall 2"),
                       answer("Info \"Serial port not open., errorcode: 1024\"") +
                           answer("serial Error 0xA000000"));
    }
    EXPECT_TRUE(daemon.isAlive());
}

} // namespace
