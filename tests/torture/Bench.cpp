#include "Bench.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/BinaryFrames.h"
#include "support/Connection.h"
#include "support/DaemonTest.h"
#include "support/Waiting.h"

namespace {

// For a connection's thread to end.
constexpr std::chrono::milliseconds kMoment{800};
// Longer than the unit waits for the rest of a frame or for an acknowledgement, or before it opens a
// line again.
constexpr std::chrono::milliseconds kLongerThanAPause{1500};
constexpr std::size_t kMuch = 65536;

DaemonStart startOf(Link serial, const Needs& needs, const CallFaults* faults) {
    DaemonStart start;
    start.stationLine = true;
    start.limits = needs.limits;
    start.callFaults = faults;
    if (serial == Link::Lines)
        start.supplier = "SOLMED";
    return start;
}

/// What is opened once and stays open; and what is made once, such as the scratch buffer.
void warmUp() {
    const Connection station;
    for (const char* text : {"i2c read 0 1 0x50 hex(00)", "memory read 8bit 1 0", "status"}) {
        station.send(request(text));
        EXPECT_NE(station.receiveLine(), "");
    }
    const Spoken shell = shellCommand(Link::Tcp, 60, "echo warm", "warm\n");
    expectExchange(station, shell.sent, shell.received);
}

} // namespace

Bench::Bench(Link serial, const Needs& needs) : m_serial(serial) {
    if (needs.callFaults)
        m_faults = std::make_unique<CallFaults>();
    m_daemon = std::make_unique<Daemon>(startOf(serial, needs, m_faults.get()));
    m_buildStamp = m_daemon->buildStamp();
    expectGreeting();
    warmUp();
    m_threads = settledThreadCount(m_daemon->pid());
    // The connection that warmed it up has a descriptor and a thread for a moment yet.
    const auto count = [this] { return openDescriptors(m_daemon->pid()).size(); };
    eventually([&] { return threadCount(m_daemon->pid()) < m_threads; }, kMoment);
    m_threads = threadCount(m_daemon->pid());
    m_descriptors = count();
}

std::string Bench::statusLine() const {
    return answer("status \"" + m_buildStamp + "\" A024 \"1A\" 4");
}

void Bench::expectGreeting() {
    if (m_serial == Link::Frames)
        expectAnnouncement();
    else
        expectExchange(m_line, "", answer("Info Production Test Server (Build " + m_buildStamp + ")"));
}

/// The startup status, behind those of its two debug frames that the line was there for.
void Bench::expectAnnouncement() {
    const std::string repetition = repetitionFrames();
    for (std::string frame = m_line.receiveFrame();; frame = m_line.receiveFrame()) {
        if (frame == statusFrame(m_buildStamp, true) || frame == statusFrame(m_buildStamp, false))
            break;
        ASSERT_NE(repetition.find(frame), frame.empty() ? 0 : std::string::npos)
            << testing::PrintToString(frame);
    }
    m_line.send(kAcknowledgement);
    m_line.waitUntilTaken();
}

void Bench::replug() {
    m_line.pull();
    m_line.plug();
    expectGreeting();
}

std::size_t Bench::resynchronise() {
    // Apart from those of the rows.
    constexpr unsigned kMarkers = 0x3'8000;
    const std::string end = m_serial == Link::Lines ? "\x03\n" : ""; // of what was begun
    std::string all;
    const bool isIdle = eventually([&] {
        const Spoken marker = numbered(m_serial, ++m_marker + kMarkers);
        m_line.send(end + marker.sent);
        const auto isAnswered = [&] { return all.find(marker.received) != std::string::npos; };
        while (!isAnswered() && m_line.hasInputWithin(kLongerThanAPause))
            all += m_line.receiveSome(kMuch);
        return isAnswered();
    });
    EXPECT_TRUE(isIdle) << "its line is not served";
    return all.size();
}
