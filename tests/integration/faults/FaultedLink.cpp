#include "faults/FaultedLink.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>
#include <vector>

#include "AsciiDaemonTest.h"
#include "line/BinaryLink.h"
#include "support/BinaryFrames.h"
#include "support/Lines.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

constexpr std::chrono::milliseconds kNoTime{0};
// What a line that is opened again takes to be heard of; nothing depends on it but how often it is
// asked.
constexpr std::chrono::milliseconds kToBeHeardOf{50};
constexpr std::chrono::milliseconds kBetweenProbes{200};

constexpr char kInfo[] = "\x02#Info \"";
constexpr std::string_view kProbeReason = "No Handler for the Command x";

DaemonStart with(const CallFaults& faults, DaemonStart start = {}) {
    start.callFaults = &faults;
    return start;
}

bool beginsWith(const std::string& text, std::string_view beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

/// A line that is no reason for what follows.
bool isLastLine(const std::string& received) {
    constexpr std::string_view kEnd = "\x03\n";
    const std::size_t last = received.rfind("\x02#");
    return last != std::string::npos && received.compare(last, sizeof kInfo - 1, kInfo) != 0 &&
           received.find(kEnd, last) == received.size() - kEnd.size();
}

bool hasCode(const std::string& received) {
    return isLastLine(received) &&
           received.find(" Error 0x", received.rfind("\x02#")) != std::string::npos;
}

/// A reason, and behind it a code.
bool isAsciiRefusal(const std::string& received) {
    return beginsWith(received, kInfo) && hasCode(received);
}

/// A reason, behind which the connection has ended, or nothing but its end.
bool isCutRefusal(const std::string& received) {
    return received.empty() || beginsWith(received, kInfo);
}

std::string removed(std::string text, const std::string& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
    return text;
}

} // namespace

std::string FaultedLink::ask(const std::string& request) {
    m_hasEnded = false;
    std::string received;
    if (!station().trySend(request)) {
        m_hasEnded = true;
        return received;
    }
    const bool isOver = eventually([&] {
        if (station().hasInputWithin(kNoTime))
            received += receivePiece();
        return isWhole(received) || m_hasEnded || faults.areOver();
    });
    EXPECT_TRUE(isOver) << "no answer behind " << testing::PrintToString(received);
    return testing::Test::HasFailure() ? received : settle(std::move(received));
}

bool FaultedLink::hasLostText() const {
    return faults.failedCalls().find(" write") != std::string::npos;
}

std::uint64_t FaultedLink::stopFaults() {
    const std::uint64_t calls = faults.stop();
    // One of the last may have gone wrong behind the answer.
    if (!faults.failedCalls().empty() && !testing::Test::HasFailure())
        receiveRest({});
    return calls;
}

std::string FaultedLink::settle(std::string received) {
    if (!faults.areOver())
        return received;
    faults.stop();
    return receiveRest(std::move(received));
}

FaultedNetwork::FaultedNetwork() : m_daemon(with(faults)) {}

void FaultedNetwork::begin() {
    m_station.emplace();
}

std::string FaultedNetwork::receivePiece() {
    std::string line = m_station->receiveLine();
    m_hasEnded = line.empty();
    return line;
}

bool FaultedNetwork::isWhole(const std::string& received) const {
    return isLastLine(received);
}

std::string FaultedNetwork::settle(std::string received) {
    if (faults.areOver())
        faults.stop();
    while (!isWhole(received) && !m_hasEnded && !testing::Test::HasFailure())
        received += receivePiece();
    return received;
}

bool FaultedNetwork::isRefusal(const std::string& /*request*/, const std::string& received) const {
    return isAsciiRefusal(received) || (m_hasEnded && isCutRefusal(received));
}

FaultedAsciiLine::FaultedAsciiLine() : m_daemon(with(faults, asciiStart())) {
    expectExchange(m_adapter, "", banner(m_daemon));
}

std::string FaultedAsciiLine::receivePiece() {
    std::string line = m_adapter.receiveLine();
    if (line == banner(m_daemon)) {
        m_hasEnded = true;
        return {};
    }
    return line;
}

bool FaultedAsciiLine::isWhole(const std::string& received) const {
    return isLastLine(received);
}

/// An answer may never come: one that the line did not take is lost. What a line is opened with throws
/// away what was on its way, so that the probe may have to be repeated.
std::string FaultedAsciiLine::receiveRest(std::string received) {
    m_adapter.hasInputWithin(kToBeHeardOf);
    std::vector<std::string> probed;
    for (int asked = 0; asked != 1 && !testing::Test::HasFailure();) {
        const std::string probe = "probe" + std::to_string(++m_probes);
        probed.push_back(unknown(probe));
        // One that was asked more than once may be answered more than once: another one follows it.
        for (asked = 1; !receiveUntilProbed(probe, received) && !testing::Test::HasFailure(); ++asked) {
        }
    }
    for (const std::string& answer : probed)
        received = removed(received, answer);
    return received;
}

/// False when no answer has come in time.
bool FaultedAsciiLine::receiveUntilProbed(const std::string& probe, std::string& received) {
    m_adapter.send(request(probe));
    while (received.find(unknown(probe)) == std::string::npos) {
        if (!m_adapter.hasInputWithin(kBetweenProbes))
            return false;
        received += receivePiece();
    }
    return true;
}

bool FaultedAsciiLine::isRefusal(const std::string& /*request*/, const std::string& received) const {
    return isAsciiRefusal(received) || (m_hasEnded && isCutRefusal(received)) ||
           (hasLostText() && (hasCode(received) || isCutRefusal(received)));
}

FaultedBinaryLine::FaultedBinaryLine() : m_daemon(with(faults, withStationLine())) {
    EXPECT_EQ(m_adapter.receiveFrame(), statusFrame(m_daemon.buildStamp(), false));
    m_adapter.send(kAcknowledgement);
    m_adapter.waitUntilTaken();
}

std::string FaultedBinaryLine::receivePiece() {
    std::string frame = m_adapter.receiveFrame();
    if (frame == debugFrame("Startup State sent but requested again"))
        m_hasEnded = true;
    return frame;
}

/// With a frame behind the debug frames.
bool FaultedBinaryLine::isWhole(const std::string& received) const {
    for (std::size_t at = 0; at + 1 < received.size();
         at += std::max<std::size_t>(static_cast<unsigned char>(received[at]), 1)) {
        if (received[at + 1] != 'd')
            return true;
    }
    return false;
}

/// False when no answer has come in time.
bool FaultedBinaryLine::receiveUntilProbed(const std::string& probe, std::string& received) {
    const std::string probed = errorFrame(probe);
    m_adapter.send(std::string(kAcknowledgement).append(probe));
    while (received.find(probed) == std::string::npos) {
        if (!m_adapter.hasInputWithin(kBetweenProbes))
            return false;
        received += receivePiece();
    }
    return true;
}

/// Whether the daemon has taken all that was sent out of the line.
bool FaultedBinaryLine::isTaken() const {
    pollfd event{m_adapter.terminal(), POLLIN, 0};
    return ::poll(&event, 1, 0) == 0;
}

std::string FaultedBinaryLine::settle(std::string received) {
    if (isWhole(received)) {
        m_adapter.send(kAcknowledgement);
        EXPECT_TRUE(eventually([this] { return faults.areOver() || isTaken(); }));
    }
    return FaultedLink::settle(std::move(received));
}

std::string FaultedBinaryLine::receiveRest(std::string received) {
    m_adapter.hasInputWithin(kToBeHeardOf);
    std::vector<std::string> probed;
    for (int asked = 0; asked != 1 && !testing::Test::HasFailure();) {
        const std::string probe{'\4', 'x', static_cast<char>(++m_probes), '\0'};
        probed.push_back(errorFrame(probe));
        // One that was asked more than once may be answered more than once: another one follows it.
        for (asked = 1; !receiveUntilProbed(probe, received) && !testing::Test::HasFailure(); ++asked) {
        }
    }
    m_adapter.send(kAcknowledgement);
    m_adapter.waitUntilTaken();
    for (const std::string& frame : probed)
        received = removed(received, frame);
    received = removed(received, debugFrame(kProbeReason));
    return removed(received, repetitionFrames() + statusFrame(m_daemon.buildStamp(), true));
}

bool FaultedBinaryLine::isRefusal(const std::string& request, const std::string& received) const {
    constexpr std::size_t kShortestAnswered = 4;
    const std::string generic = errorFrame(request);
    std::size_t at = 0;
    while (at + 1 < received.size() && received[at + 1] == 'd')
        at += static_cast<unsigned char>(received[at]);
    const std::string frame = received.substr(std::min(at, received.size()));
    const bool hasCode = frame.size() == generic.size() && frame.substr(0, 4) == generic.substr(0, 4) &&
                         frame.substr(4) != "\0\0\0\0"s;
    if (hasLostText())
        return hasCode || frame.empty();
    return at > 0 && (hasCode || (frame.empty() && request.size() < kShortestAnswered));
}
