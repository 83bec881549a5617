#include <gtest/gtest.h>

#include <chrono>
#include <ostream>
#include <string>
#include <vector>

#include "line/BinaryLink.h"
#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

constexpr std::chrono::seconds kObservation{2};
constexpr std::chrono::milliseconds kLittleProcessorTime{kSanitized ? 1000 : 200};
constexpr std::ptrdiff_t kFewLines = 200;

std::chrono::milliseconds processorTimeWhileObserved(const Daemon& daemon) {
    const auto before = processorTime(daemon.pid());
    observeFor(kObservation);
    return processorTime(daemon.pid()) - before;
}

void expectAnnouncement(Adapter& adapter, const std::string& announcement) {
    EXPECT_EQ(adapter.receive(announcement.size()), announcement);
    adapter.send(kAcknowledgement);
}

void expectServed(Adapter& adapter, const Daemon& daemon) {
    adapter.send(std::string(kStatusRequest).append(kAcknowledgement));
    EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), true));
}

TEST(BinaryDeviceAbsent, IsWaitedForInSilence) {
    Adapter adapter;
    adapter.pull();
    const Daemon daemon(withStationLine());
    const std::size_t descriptors = openDescriptors(daemon.pid()).size();
    EXPECT_LT(processorTimeWhileObserved(daemon), kLittleProcessorTime);
    expectHealthy(daemon);

    adapter.plug();
    expectAnnouncement(adapter, statusFrame(daemon.buildStamp(), false));
    expectServed(adapter, daemon);
    EXPECT_EQ(errorLines(daemon), std::vector<std::string>());
    constexpr std::size_t kPort = 3; // the device, and what interrupts those who wait for it
    EXPECT_LE(openDescriptors(daemon.pid()).size(), descriptors + kPort);
}

TEST(BinaryDeviceAbsent, APulledAdapterCostsNothing) {
    Adapter adapter;
    const Daemon daemon(withStationLine());
    expectAnnouncement(adapter, statusFrame(daemon.buildStamp(), false));
    expectServed(adapter, daemon);
    adapter.waitUntilTaken();
    adapter.pull();
    EXPECT_TRUE(daemon.waitForError(LinkErrors::kHungUp));
    EXPECT_LT(processorTimeWhileObserved(daemon), kLittleProcessorTime);
    EXPECT_EQ(errorLines(daemon, LinkErrors::kLineGone.size()), LinkErrors::kLineGone);

    adapter.plug();
    expectAnnouncement(adapter, repetitionFrames() + statusFrame(daemon.buildStamp(), true));
    expectServed(adapter, daemon);
    EXPECT_EQ(errorLines(daemon, LinkErrors::kLineGone.size()), LinkErrors::kLineGone);
}

/// What stands at the node's place but is no terminal, and what opening it ends in.
struct NoTerminal {
    const char* name;
    void (*make)();
    const char* reason; ///< decimal error number, " DESC: ", text
};

std::ostream& operator<<(std::ostream& stream, const NoTerminal& row) {
    return stream << row.name;
}

void makeRegularFile() {
    writeFile(kStationLine, "");
}

void makeFolderAtNode() {
    makeFolder(kStationLine);
}

void makeFifoAtNode() {
    makeFifo(kStationLine);
}

void makeNullDevice() {
    makeLink(kStationLine, "/dev/null");
}

constexpr char kNotATerminal[] =
    "25 DESC: Failed get original Device Attributes of /dev/usbserialadapter1: Inappropriate ioctl for "
    "device";
constexpr char kIsAFolder[] = "21 DESC: Failed to open Device /dev/usbserialadapter1: Is a directory";

class BinaryNoTerminal : public testing::TestWithParam<NoTerminal> {
protected:
    std::string reasonText() const {
        const std::string reason = GetParam().reason;
        return reason.substr(reason.find(": ") + 2);
    }
};

TEST_P(BinaryNoTerminal, IsReportedOnceAndTriedWithoutHaste) {
    Adapter adapter;
    adapter.pull();
    GetParam().make();
    const Daemon daemon(withStationLine());
    const std::string couldNot = "Could not open the device: " + reasonText();
    const std::vector<std::string> kFirstAttempt = {
        couldNot, "~ ### ~ Exception: ID: 0x"s + GetParam().reason, LinkErrors::kReadFailed,
        LinkErrors::kLoop, LinkErrors::kNotOpen};
    // Nothing is acted on any more: two debug frames, the status and its acknowledgement.
    const std::vector<std::string> kFurtherAttempt = {couldNot,
                                                      couldNot,
                                                      couldNot,
                                                      LinkErrors::kReadFailed,
                                                      LinkErrors::kNoAcknowledgement,
                                                      LinkErrors::kReadFailed,
                                                      LinkErrors::kLoop,
                                                      LinkErrors::kNotOpen};
    ASSERT_LT(processorTimeWhileObserved(daemon), kLittleProcessorTime);

    std::vector<std::string> lines = errorLines(daemon);
    EXPECT_LT(static_cast<std::ptrdiff_t>(lines.size()), kFewLines);
    ASSERT_GE(lines.size(), kFirstAttempt.size() + kFurtherAttempt.size());
    const auto second = lines.begin() + static_cast<std::ptrdiff_t>(kFirstAttempt.size());
    const auto third = second + static_cast<std::ptrdiff_t>(kFurtherAttempt.size());
    EXPECT_EQ(std::vector<std::string>(lines.begin(), second), kFirstAttempt);
    EXPECT_EQ(std::vector<std::string>(second, third), kFurtherAttempt);

    Connection station;
    expectExchange(station, request("meanwhile"), unknown("meanwhile"));
    removeFile(kStationLine);
    adapter.plug();
    expectAnnouncement(adapter, repetitionFrames() + statusFrame(daemon.buildStamp(), true));
    expectServed(adapter, daemon);
}

INSTANTIATE_TEST_SUITE_P(Nodes, BinaryNoTerminal,
                         testing::Values(NoTerminal{"File", makeRegularFile, kNotATerminal},
                                         NoTerminal{"Folder", makeFolderAtNode, kIsAFolder},
                                         NoTerminal{"Fifo", makeFifoAtNode, kNotATerminal},
                                         NoTerminal{"NullDevice", makeNullDevice, kNotATerminal}),
                         testing::PrintToStringParamName());

} // namespace
