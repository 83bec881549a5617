#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/syscall.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "support/DaemonTest.h"
#include "support/Pattern.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

const char kStopping[] = "Prod.testserver: Stopping NetListener\n";

DaemonStart refusing(std::vector<KernelRefusal> refusals, bool waitForPort = true) {
    DaemonStart start;
    start.refusals = std::move(refusals);
    start.waitForPort = waitForPort;
    return start;
}

/// What follows the start on standard error.
std::string complaints(const Daemon& daemon) {
    const std::string error = daemon.error();
    const std::size_t end = error.find(kStartEnd);
    return end == std::string::npos ? error : error.substr(end + sizeof kStartEnd - 1);
}

TEST(RefusingKernel, WithoutASocketTheNetworkEnds) {
    const Daemon daemon(refusing({{SYS_socket, EMFILE}}, false));
    EXPECT_TRUE(daemon.waitForError(kStopping));
    EXPECT_EQ(complaints(daemon),
              "Prod.testserver: Invalid socket descriptor -1\n" + std::string(kStopping));
    EXPECT_TRUE(daemon.isAlive()); // for the serial line
}

TEST(RefusingKernel, WithoutSocketOptionsTheNetworkEnds) {
    const Daemon daemon(refusing({{SYS_setsockopt, ENOMEM}}, false));
    EXPECT_TRUE(daemon.waitForError(kStopping));
    // The number is the lowest that is free, which depends on what the serial side has open by then.
    EXPECT_TRUE(
        matchesWhole(complaints(daemon),
                     "Prod\\.testserver: Could not set socket options, socket descriptor: [0-9]+\n" +
                         std::string(kStopping)))
        << complaints(daemon);
    EXPECT_TRUE(daemon.isAlive());
}

struct Quiet {
    const char* name;
    KernelRefusal refusal;
};

const Quiet kQuiet[] = {
    {"bind", {SYS_bind, EADDRINUSE}},
    {"listen", {SYS_listen, EADDRINUSE}},
    {"accept", {SYS_accept4, ENFILE}},
    {"accept, for lack of memory", {SYS_accept4, ENOMEM}},
};

TEST(RefusingKernel, WithoutClientsTheDaemonStaysQuiet) {
    for (const Quiet& row : kQuiet) {
        SCOPED_TRACE(row.name);
        const Daemon daemon(refusing({row.refusal}, false));
        ASSERT_TRUE(daemon.waitForError(kStartEnd));
        const auto before = processorTime(daemon.pid());
        observeFor(std::chrono::seconds(1));
        EXPECT_LT(processorTime(daemon.pid()) - before, std::chrono::milliseconds(200));
        EXPECT_TRUE(daemon.isAlive());
        EXPECT_EQ(complaints(daemon), "");
    }
}

// The library starts shells and threads with the same call; only shells share the caller's memory until
// they are under way.
const std::vector<KernelRefusal> kNoShell = {
    {SYS_clone3, ENOSYS}, {SYS_clone, EAGAIN, 0, CLONE_VFORK}, {SYS_vfork, EAGAIN}};

TEST(RefusingKernel, TellsThatTheShellCannotBeStarted) {
    if (kSanitized && !kAddressSanitized)
        GTEST_SKIP() << "the thread sanitizer starts it as it makes a copy of a process";
    const Daemon daemon(refusing(kNoShell));
    Connection station;
    expectExchange(station, request("exec command 5 \"touch /tmp/ran\""),
                   failure("exec", "spawn for starting /bin/sh failed"));
    EXPECT_FALSE(exists("/tmp/ran"));
    expectHealthy(daemon);
}

TEST(RefusingKernel, TellsThatTheShellCannotBeKilled) {
    const Daemon daemon(refusing({{SYS_kill, EPERM}}));
    Connection station;
    expectExchange(
        station, request("exec command 1 \"echo $$ >/tmp/pid; sleep 1000\""),
        failure("exec", "Process echo $$ >/tmp/pid; sleep 1000 could not be killed after timeout\n"));
    const pid_t shell = std::stoi(contentOf("/tmp/pid"));
    EXPECT_TRUE(isRunning(shell));
    ::kill(-shell, SIGKILL);
    expectExchange(station, request("exec command 5 \"echo next\""),
                   answer("exec base64(" + base64("next\n") + ")"));
    expectHealthy(daemon);
}

TEST(RefusingKernel, TellsThatTheShellCannotBeWaitedFor) {
    const Daemon daemon(refusing({{SYS_wait4, ECHILD}}));
    Connection station;
    expectExchange(
        station, request("exec command 5 \"true\""),
        failure("exec", "Timer timeout for c command child process with unknown error errorno: 10"));
    expectHealthy(daemon);
}

TEST(RefusingKernel, WaitsForTheShellWithoutProcessDescriptors) {
    const Daemon daemon(refusing({{SYS_pidfd_open, ENOSYS}}));
    Connection station;
    expectExchange(station, request("exec command 30 \"sleep 0.1; echo waited\""),
                   answer("exec base64(" + base64("waited\n") + ")"));
    expectExchange(station, request("exec command 1 \"sleep 1000\""),
                   failure("exec", "Process sleep 1000 was killed after timeout\nstdout+err:\n\n"));
    expectHealthy(daemon);
}

} // namespace
