#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "line/Adapter.h"
#include "support/BinaryFrames.h"
#include "support/Daemon.h"

/// What the daemon writes to standard error about its line, without the prefix of each line.
namespace LinkErrors {

constexpr char kReadFailed[] = "Read locked error in CommHandler";
constexpr char kLoop[] = "Error in Listener thead loop";
constexpr char kHungUp[] =
    "3~ ### ~ Exception: ID: 0x5 DESC: Failed to read from "
    "/dev/usbserialadapter1: Input/output error";
constexpr char kNotOpen[] = "3~ ### ~ Exception: ID: 0x400 DESC: Serial port not open.";
constexpr char kOutOfRange[] = "3~ ### ~ Exception: ID: 0x1010000 DESC: invalid vector<T> subscript";
constexpr char kEmptyResponse[] = "WARNING: Reponse size is 0";
constexpr char kNoAcknowledgement[] = "NO ACK message received from the client (not critical)";
constexpr char kNotAnAcknowledgement[] = "Received not an Ack-Message";
constexpr char kHalfAcknowledgement[] = "Received Data invalid: 1";

/// A line that hangs up while the daemon waits for a request.
const std::vector<std::string> kLineGone = {kReadFailed, kLoop, kHungUp};

} // namespace LinkErrors

/// Starts a daemon that serves the unit's line.
DaemonStart withStationLine();

/// Each line that the daemon has written to standard error behind its banner, without its prefix. What a
/// startup status has to say of its runtime, which is the machine's, is left out. The daemon writes them
/// a moment later than it answers, so that this waits until there are at least so many.
std::vector<std::string> errorLines(const Daemon& daemon, std::size_t fewest = 0);

/// A daemon whose announcement has been acknowledged, for each case. In the end the daemon must serve,
/// and have written to standard error the expected lines and no others.
class BinaryLinkTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// On a busy machine this may be too late, which the daemon says and which is no failure.
    void acknowledge();

    /// Exactly these bytes are the next to come.
    void expectFrames(const std::string& frames);

    /// Acknowledges with the request, since the unit reads it only once it has answered.
    void expectExchange(std::string_view request, const std::string& frames);

    /// Sends what gets an answer that cannot be acknowledged, or none.
    void expectReply(std::string_view request, const std::string& frames);

    /// A status that was asked for, which proves that nothing else was underway.
    void expectServed();

    /// Everything with which the unit comes back on a line that was cut.
    void expectReturn();

    void expectErrors(std::initializer_list<std::string> lines);
    void expectErrors(const std::vector<std::string>& lines);

    std::string status(bool sentBefore) const { return statusFrame(daemon.buildStamp(), sentBefore); }

    Adapter adapter;
    Daemon daemon{withStationLine()};

private:
    std::vector<std::string> withoutLateness(std::vector<std::string> lines) const;

    std::vector<std::string> m_expectedErrors;
    std::ptrdiff_t m_acknowledgements = 0; // that were sent by themselves
};
