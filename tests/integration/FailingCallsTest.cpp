// Each system call that a request takes goes wrong once, the first, then the second, and so on: what a
// station gets is the right answer, or a refusal, or the end of its connection, and the next station is
// served as ever. With FAILING_CALLS_WIDELY set, in more ways and more often.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "faults/FaultedLink.h"
#include "support/BinaryFrames.h"
#include "support/DaemonTest.h"
#include "support/Lines.h"

namespace {

using namespace std::string_literals;

/// How calls go wrong.
struct Trial {
    const char* name;
    Fault fault;
    std::uint64_t times;
    bool mustBeRight; ///< what fails like this may be repeated
    bool isWide;
};
constexpr Trial kTrials[] = {
    {"error", Fault::Error, 1, false, false},
    {"interruption", Fault::Interruption, 1, true, false},
    {"half a read", Fault::HalfRead, 1, true, false},
    {"half a write", Fault::HalfWrite, 1, true, false},
    {"other error", Fault::OtherError, 1, false, true},
    {"not ready", Fault::NotReady, 1, false, true},
    {"errors", Fault::Error, 5, false, true},
    {"other errors", Fault::OtherError, 5, false, true},
    {"interruptions", Fault::Interruption, 5, true, true},
    {"half the reads", Fault::HalfRead, 5, true, true},
    {"errors without end", Fault::Error, CallFaults::kForEver, false, true},
};

constexpr std::uint64_t kLongStep = 23;

bool isWide() {
    return std::getenv("FAILING_CALLS_WIDELY") != nullptr;
}

void withoutPictures() {
    for (const char* picture : {"colorscale_7bars", "greyscale_33bars", "greyscale_11bars"})
        std::filesystem::remove("/tmp/"s + picture + "_888_800x480.bmp");
}

void withAudioDriver() {
    static const int status = std::system("deva-nvaudio");
    ASSERT_EQ(status, 0);
}

/// Requests in their order, answered alike whenever they are asked.
struct Session {
    const char* name;
    std::vector<std::string> requests;
    void (*prepare)() = [] {};
    bool isLong = false; ///< takes so many calls that only some of them are tried

    friend void PrintTo(const Session& session, std::ostream* out) { *out << session.name; }
};

std::string nameOf(const testing::TestParamInfo<Session>& info) {
    return info.param.name;
}

template <typename Link>
class FailingCalls : public testing::TestWithParam<Session> {
protected:
    void SetUp() override {
        if (kSanitized)
            GTEST_SKIP() << "a sanitizer takes the library's functions itself";
        m_link.emplace();
        learn();
        learn();
    }

    void expectOutlived(const Trial& trial) {
        SCOPED_TRACE(trial.name);
        const std::uint64_t step = GetParam().isLong && !isWide() ? kLongStep : 1;
        std::uint64_t first = 1;
        while (askWithFaults(trial, first) >= first && !HasFailure())
            first += step;
        if (trial.fault == Fault::Error) {
            EXPECT_GT(first, 1U) << "nothing failed";
        }
    }

    void expectAllOutlived() {
        for (const Trial& trial : kTrials) {
            if (HasFailure())
                return;
            if ((!trial.isWide || isWide()) && m_link->isOutlived(trial.fault))
                expectOutlived(trial);
        }
    }

private:
    /// What each request is answered by when nothing fails.
    void learn() {
        GetParam().prepare();
        m_right.clear();
        m_link->begin();
        const bool isUnknown = GetParam().name == std::string("unknown");
        for (const std::string& request : GetParam().requests) {
            const std::string& answer = m_right.emplace_back(m_link->ask(request));
            EXPECT_EQ(m_link->isRefusal(request, answer), isUnknown) << testing::PrintToString(answer);
        }
    }

    /// Returns how many calls there were that could fail.
    std::uint64_t askWithFaults(const Trial& trial, std::uint64_t first) {
        const bool isEndless = trial.times == CallFaults::kForEver;
        GetParam().prepare();
        if (isEndless)
            m_link->begin();
        m_link->faults.fail(trial.fault, first, trial.times);
        if (!isEndless)
            m_link->begin();
        for (std::size_t at = 0; at < m_right.size(); ++at) {
            const std::string received = m_link->ask(GetParam().requests[at]);
            if (received == m_right[at] && !m_link->hasEnded())
                continue;
            // What is interrupted within the library that unpacks cannot be repeated.
            const bool mustBeRight = trial.mustBeRight && received.find("gzread") == std::string::npos;
            const bool isHonest =
                !mustBeRight &&
                (received == m_right[at] || m_link->isRefusal(GetParam().requests[at], received) ||
                 (received.empty() && m_link->mayBeSilent()));
            EXPECT_TRUE(isHonest) << "call " << first << "," << m_link->faults.failedCalls() << ": "
                                  << testing::PrintToString(received) << "\nto "
                                  << testing::PrintToString(GetParam().requests[at]);
            break;
        }
        const std::uint64_t calls = m_link->stopFaults();
        EXPECT_FALSE(HasFailure()) << "call " << first << "," << m_link->faults.failedCalls();
        expectServed(first);
        return calls;
    }

    void expectServed(std::uint64_t first) {
        EXPECT_TRUE(m_link->daemon().isAlive());
        if (HasFailure())
            return;
        GetParam().prepare();
        m_link->begin();
        for (std::size_t at = 0; at < m_right.size(); ++at)
            EXPECT_EQ(m_link->ask(GetParam().requests[at]), m_right[at])
                << "after call " << first << "," << m_link->faults.failedCalls();
    }

    std::optional<Link> m_link;
    std::vector<std::string> m_right;
};

class FailingCallsOfTheNetwork : public FailingCalls<FaultedNetwork> {};

TEST_P(FailingCallsOfTheNetwork, AreOutlivedWithoutAWrongAnswer) {
    expectAllOutlived();
}

class FailingCallsOfTheAsciiLine : public FailingCalls<FaultedAsciiLine> {};

TEST_P(FailingCallsOfTheAsciiLine, AreOutlivedWithoutAWrongAnswer) {
    expectAllOutlived();
}

class FailingCallsOfTheBinaryLine : public FailingCalls<FaultedBinaryLine> {};

TEST_P(FailingCallsOfTheBinaryLine, AreOutlivedWithoutAWrongAnswer) {
    expectAllOutlived();
}

std::vector<std::string> lines(const std::vector<std::string>& texts) {
    std::vector<std::string> all;
    for (const std::string& text : texts)
        all.push_back(request(text));
    return all;
}

// Over a line of text it is not answered.
INSTANTIATE_TEST_SUITE_P(Acknowledge, FailingCallsOfTheNetwork,
                         testing::Values(Session{"ack", lines({"ack"})}), nameOf);

const Session kSessions[] = {
    {"status", lines({"status"})},
    {"files", lines({"status 01", "status 02", "status 03", "status 04"})},
    {"exec", lines({"exec command 5 \"echo hello\""})},
    {"memory", lines({"memory write 8bit 4 0x100 hex(01020304)", "memory read 8bitcrc 4 0x100"})},
    {"diag", lines({"memory write 8bit 4 0x100 hex(01020304)", "diag cksum 0 0x100 4"})},
    {"port", lines({"port write 3 1", "port read 3", "port getattributes"})},
    {"i2c", lines({"i2c write 0 0x50 hex(10C0FFEE)", "i2c read 0 3 0x50 hex(10)",
                   "i2c setattributes 0 1 0190", "i2c getattributes 0 1"})},
    {"blockdev",
     lines({"blockdev open 180 0", "blockdev read 180 0 0 2 0x1000", "memory read 8bit 2 0x11FE",
            "blockdev write 180 0 0 2 0x1000", "blockdev close 180 0"})},
    {"serial_get",
     lines({"serial open 1 115200 0", "serial getall 1", "serial get 1 2", "serial close 1"})},
    {"serial_send", lines({"serial open 1 115200 0", "serial send 1 hex(0041)", "serial close 1"})},
    {"wlan", lines({"serial open 240", "serial send 240 hex(0300080001000000)", "serial get 240 26",
                    "serial close 240"})},
    {"bluetooth_get", lines({"serial open 241", "serial get 241 7", "serial close 241"})},
    {"bluetooth_send", lines({"serial open 241", "serial send 241 hex(01030C00)", "serial close 241"})},
    {"audio", lines({"audio activate", "audio deactivate"}), withAudioDriver},
    {"picture", lines({"graphic display 0 1"}), withoutPictures, true},
    {"capture", lines({"graphic display 0 0", "graphic capture 3 0"}), [] {}, true},
    {"unknown", lines({"foo 1"})},
};
INSTANTIATE_TEST_SUITE_P(Sessions, FailingCallsOfTheNetwork, testing::ValuesIn(kSessions), nameOf);
INSTANTIATE_TEST_SUITE_P(Sessions, FailingCallsOfTheAsciiLine, testing::ValuesIn(kSessions), nameOf);

const Session kFrames[] = {
    {"status", {"\2s"s}},
    {"files", {"\3s\1"s, "\3s\2"s}},
    {"exec", {execRequest(5, "echo hi")}},
    {"memory", {"\x0Ct\1\4\0\0\1\0abcd"s, "\x0At\6\4\0\0\1\0\x12\x34"s}},
    {"diag",
     {"\x0Ct\1\4\0\0\1\0abcd"s,
      "\x0C"
      "D\x09\0\0\0\1\0\0\0\0\4"s}},
    {"port", {"\6P\xE3\1\x12\4"s, "\5p\xE3\1\3"s, "\4p\xE3\0"s}},
    {"i2c", {"\6I\0\2\x50\xAB"s, "\6i\0\1\x50\x50"s, "\5i\xFF\0\1"s}},
    {"blockdev", {"\5m\xB2\0\1"s, "\x11m\xB2\0\3\0\0\0\0\0\0\0\1\0\0\x20\0"s, "\5m\xB2\0\2"s}},
    {"serial_get", {"\x09S\0\1\0\1\xC2\0\0"s, "\4S\4\1"s, "\5S\3\1\2"s, "\4S\1\1"s}},
    {"serial_send", {"\x09S\0\1\0\1\xC2\0\0"s, "\5S\2\1\0"s, "\4S\1\1"s}},
    {"wlan", {"\4S\0\xF0"s, "\x0CS\2\xF0\3\0\x08\0\1\0\0\0"s, "\5S\3\xF0\x1A"s, "\4S\1\xF0"s}},
    {"bluetooth_get", {"\4S\0\xF1"s, "\5S\3\xF1\7"s, "\4S\1\xF1"s}},
    {"bluetooth_send", {"\4S\0\xF1"s, "\x08S\2\xF1\1\3\x0C\0"s, "\4S\1\xF1"s}},
    {"audio", {"\4E\x80\1"s, "\4E\x80\0"s}, withAudioDriver},
    {"picture", {"\5G\xA0\0\1"s}, withoutPictures, true},
    {"capture", {"\5G\xA0\0\0"s, "\6G\xA1\0\3\0"s}, [] {}, true},
    {"unknown", {"\4y\1\2"s}},
};
INSTANTIATE_TEST_SUITE_P(Sessions, FailingCallsOfTheBinaryLine, testing::ValuesIn(kFrames), nameOf);

} // namespace
