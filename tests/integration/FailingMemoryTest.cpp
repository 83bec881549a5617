#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "AsciiDaemonTest.h"
#include "line/BinaryLink.h"
#include "support/BinaryFrames.h"
#include "support/CallFaults.h"
#include "support/DaemonTest.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

constexpr std::chrono::milliseconds kNoTime{0};
constexpr std::uint64_t kAttempts = 10;

DaemonStart with(const CallFaults& faults, DaemonStart start = {}) {
    if (!kSanitized)
        start.callFaults = &faults;
    return start;
}

/// Asks with as many faults in a row as each of `rows` says: from the first allocation of the request
/// on, then from the second, until there are no more. Asking returns how many there were.
template <typename Ask>
void expectOutlived(Ask ask, const std::vector<std::uint64_t>& rows = {1, 5}) {
    constexpr std::uint64_t kFewest = 3;
    for (const std::uint64_t times : rows) {
        SCOPED_TRACE("times " + std::to_string(times));
        std::uint64_t first = 1;
        while (ask(first, times) >= first && !testing::Test::HasFailure())
            ++first;
        EXPECT_GT(first, kFewest) << "nothing failed";
    }
}

/// All that is said in answer to one request; what came of it when the peer has gone.
std::string wholeAnswer(const ByteStream& station) {
    std::string all;
    std::string line;
    do {
        line = station.receiveLine();
        all += line;
    } while (line.rfind("\x02#Info \"", 0) == 0);
    return all;
}

std::string answerTo(const ByteStream& station, const std::string& asked) {
    if (!station.trySend(asked))
        return {};
    return wholeAnswer(station);
}

/// A reason, and behind it a code, or nothing because the connection has ended.
bool isRefusal(const std::string& answer) {
    const std::size_t last = answer.rfind("\x02#", answer.size());
    const bool isReason = answer.rfind("\x02#Info \"", 0) == 0;
    return isReason &&
           (last == answer.rfind("\x02#Info \"") || answer.find(" Error 0x", last) != std::string::npos);
}

/// A request that changes nothing when it is repeated.
class FailingMemory : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        if (kSanitized)
            GTEST_SKIP() << "a sanitizer takes the allocations itself";
    }

    /// What the request is answered by when nothing fails.
    std::string rightAnswer() const {
        const Connection station;
        answerTo(station, asked);
        return answerTo(station, asked);
    }

    const std::string asked = request(GetParam());
};

class FailingMemoryOfTheNetwork : public FailingMemory {
protected:
    /// One that has a thread.
    static Connection served() {
        Connection station;
        expectExchange(station, request("served"), unknown("served"));
        return station;
    }

    /// Asks while allocations fail. Returns how many there were.
    std::uint64_t askWithFaults(std::uint64_t first, std::uint64_t times) {
        const Connection station = served();
        faults.fail(Fault::NoMemory, first, times);
        const std::string received = answerTo(station, asked);
        const std::uint64_t calls = faults.stop();
        EXPECT_TRUE(received == right || received.empty() || isRefusal(received))
            << "fault " << first << ": " << testing::PrintToString(received);
        EXPECT_TRUE(daemon.isAlive());
        return calls;
    }

    CallFaults faults;
    Daemon daemon{with(faults)};
    const std::string right = rightAnswer();
};

TEST_P(FailingMemoryOfTheNetwork, EndsAtMostTheRequestAndItsConnection) {
    expectOutlived([this](auto first, auto times) { return askWithFaults(first, times); },
                   {1, 5, CallFaults::kForEver});
    EXPECT_EQ(answerTo(served(), asked), right);
}

class FailingMemoryOfTheAsciiLine : public FailingMemory {
protected:
    void SetUp() override {
        FailingMemory::SetUp();
        expectExchange(adapter, "", banner(daemon));
    }

    /// Asks while allocations fail. Returns how many there were.
    std::uint64_t askWithFaults(std::uint64_t first, std::uint64_t times) {
        faults.fail(Fault::NoMemory, first, times);
        adapter.send(asked);
        const std::string received = wholeAnswer(adapter);
        const std::uint64_t calls = faults.stop();
        // A greeting tells that the port was opened again.
        const bool isGreeting = received.find(banner(daemon)) != std::string::npos;
        EXPECT_TRUE(received == right || isRefusal(received) || isGreeting)
            << "fault " << first << ": " << testing::PrintToString(received);
        return calls;
    }

    CallFaults faults;
    Adapter adapter;
    Daemon daemon{with(faults, asciiStart())};
    const std::string right = rightAnswer();
};

TEST_P(FailingMemoryOfTheAsciiLine, EndsAtMostTheRequestAndTheOpening) {
    expectOutlived([this](auto first, auto times) { return askWithFaults(first, times); });
    EXPECT_EQ(answerTo(adapter, asked), right);
}

TEST_P(FailingMemoryOfTheAsciiLine, IsOutlivedHoweverLongItLasts) {
    faults.fail(Fault::NoMemory, 1, CallFaults::kForEver);
    adapter.send(asked);
    EXPECT_TRUE(eventually([this] { return faults.calls() > kAttempts; }));
    faults.stop();
    EXPECT_EQ(adapter.receiveLine(), banner(daemon));
    EXPECT_EQ(answerTo(adapter, asked), right);
}

/// A frame that changes nothing when it is repeated.
class FailingMemoryOfTheBinaryLine : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        if (kSanitized)
            GTEST_SKIP() << "a sanitizer takes the allocations itself";
        EXPECT_EQ(adapter.receiveFrame(), statusFrame(daemon.buildStamp(), false));
        expectServed();
        ask();
        right = expectServed();
    }

    void ask() { adapter.send(GetParam()); }

    /// The frames that come before the status that is asked for now. Something may have been left to be
    /// acknowledged; where nothing was, nobody answers the acknowledgement.
    std::vector<std::string> framesBeforeStatus() {
        std::vector<std::string> frames;
        const std::string status = statusFrame(daemon.buildStamp(), true);
        adapter.send(std::string(kAcknowledgement).append(kStatusRequest));
        while (frames.empty() || frames.back() != status)
            frames.push_back(adapter.receiveFrame());
        frames.pop_back();
        adapter.send(kAcknowledgement);
        adapter.waitUntilTaken();
        return frames;
    }

    std::string expectServed() {
        std::string all;
        for (const std::string& frame : framesBeforeStatus())
            all += frame;
        return all;
    }

    bool isAllowed(const std::string& frame) const {
        const bool isDebugFrame = frame.size() > 1 && frame[1] == 'd';
        const bool isRefusal = frame == errorFrame(GetParam());
        return isDebugFrame || isRefusal || right.find(frame) != std::string::npos;
    }

    /// Asks while allocations fail. Returns how many there were.
    std::uint64_t askWithFaults(std::uint64_t first, std::uint64_t times) {
        const std::size_t said = daemon.error().size();
        faults.fail(Fault::NoMemory, first, times);
        ask();
        EXPECT_TRUE(eventually([&] {
            return adapter.hasInputWithin(kNoTime) ||
                   daemon.error().find("Exception", said) != std::string::npos;
        })) << daemon.error();
        const std::uint64_t calls = faults.stop();
        for (const std::string& frame : framesBeforeStatus())
            EXPECT_TRUE(isAllowed(frame)) << "fault " << first << ": " << testing::PrintToString(frame);
        return calls;
    }

    CallFaults faults;
    Adapter adapter;
    Daemon daemon{with(faults, withStationLine())};
    std::string right; ///< what it is answered by when nothing fails
};

TEST_P(FailingMemoryOfTheBinaryLine, EndsAtMostTheRequest) {
    expectOutlived([this](auto first, auto times) { return askWithFaults(first, times); });
    ask();
    EXPECT_EQ(expectServed(), right);
}

TEST_P(FailingMemoryOfTheBinaryLine, IsOutlivedHoweverLongItLasts) {
    faults.fail(Fault::NoMemory, 1, CallFaults::kForEver);
    for (std::uint64_t attempt = 0; attempt < kAttempts; ++attempt) {
        ask();
        adapter.waitUntilTaken();
    }
    faults.stop();
    framesBeforeStatus();
    ask();
    EXPECT_EQ(expectServed(), right);
}

constexpr const char* kRequests[] = {
    "status",
    "status 02",
    "exec command 5 \"echo hello\"",
    "exec command 5",
    "memory write 8bit 4 0x100 hex(01020304)",
    "memory read 8bit 4 0x100",
    "diag cksum 0 0x100 64",
    "port read 3",
    "port write 3 1",
    "i2c write 0 0x50 hex(10C0FFEE)",
    "i2c read 0 3 0x50 hex(10)",
    "i2c getattributes 0 1",
    "blockdev open 180 0",
    "blockdev read 180 0 0 1 0x1000",
    "serial open 1 115200 0",
    "serial getall 1",
    "serial open 240",
    "serial open 241",
    "serial getall 241",
    "audio activate",
    "graphic display 0 1",
    "graphic capture 3 0",
    "foo 1",
};

INSTANTIATE_TEST_SUITE_P(Requests, FailingMemoryOfTheNetwork, testing::ValuesIn(kRequests));
INSTANTIATE_TEST_SUITE_P(Requests, FailingMemoryOfTheAsciiLine, testing::ValuesIn(kRequests));
INSTANTIATE_TEST_SUITE_P(Requests, FailingMemoryOfTheBinaryLine,
                         testing::Values("\1"s, "\4x\1\2"s, execRequest(5, "echo hi"),
                                         execRequest(5, "\n"), "\x0Ct\1\4\0\0\1\0abcd"s,
                                         "\x0C"
                                         "D\x09\0\0\0\1\0\0\0\0\x40"s,
                                         "\5p\xE3\1\3"s, "\6I\0\2\x50\xAB"s, "\6i\0\1\x50\x50"s,
                                         "\5m\xB2\0\1"s, "\4S\1\1"s, "\5S\3\xF0\x1A"s, "\4E\x80\1"s,
                                         "\5G\xA0\2\0"s));

} // namespace
