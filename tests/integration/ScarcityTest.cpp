#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/SocketTable.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

constexpr std::chrono::seconds kObservation{1};
constexpr std::chrono::milliseconds kLittleProcessorTime{200};

constexpr rlim_t kDescriptorLimit = 20;
constexpr std::size_t kMostStations = kDescriptorLimit - kOwnDescriptors;

DaemonStart withFewDescriptors() {
    DaemonStart start;
    start.limits = {{RLIMIT_NOFILE, kDescriptorLimit}};
    return start;
}

void expectServed(std::vector<Connection>& stations) {
    for (Connection& station : stations)
        expectExchange(station, request("served"), unknown("served"));
}

bool hasDescriptors(const Daemon& daemon, std::size_t count) {
    return eventually([&] { return openDescriptors(daemon.pid()).size() == count; });
}

TEST(FewDescriptors, SurplusStationsWaitUntilOthersLeave) {
    if (kAddressSanitized)
        GTEST_SKIP() << "a sanitizer needs descriptors for its own checks";
    const Daemon daemon(withFewDescriptors());
    std::vector<Connection> stations = acceptedStations(kMostStations);
    expectServed(stations);
    ASSERT_TRUE(hasDescriptors(daemon, kDescriptorLimit));
    std::vector<Connection> surplus(5);
    for (Connection& station : surplus)
        station.send(request("surplus"));

    const auto before = processorTime(daemon.pid());
    observeFor(kObservation);
    EXPECT_LT(processorTime(daemon.pid()) - before, kLittleProcessorTime);
    expectServed(stations);

    for (std::size_t at = 0; at < surplus.size(); ++at) {
        stations.pop_back();
        expectExchange(surplus[at], "", unknown("surplus"));
    }
    expectServed(stations);
    stations.clear();
    surplus.clear();
    EXPECT_TRUE(hasDescriptors(daemon, kOwnDescriptors));
    expectHealthy(daemon);
}

/// The answer, with the line of information that goes ahead of a failure.
std::string answerTo(Connection& station, const std::string& asked) {
    station.send(asked);
    const std::string line = station.receiveLine();
    return line.rfind("\x02#Info ", 0) == 0 ? line + station.receiveLine() : line;
}

/// Where a descriptor becomes free, the system soon keeps it for the next connection to be accepted.
void expectSoon(Connection& station, const std::string& asked, const std::string& expected) {
    std::string last;
    EXPECT_TRUE(eventually([&] {
        last = answerTo(station, asked);
        return last == expected;
    })) << last;
}

TEST(FewDescriptors, CommandsTellWhatTheyCouldNotOpen) {
    if (kAddressSanitized)
        GTEST_SKIP() << "a sanitizer needs descriptors for its own checks";
    const Daemon daemon(withFewDescriptors());
    std::vector<Connection> stations = acceptedStations(kMostStations);
    expectServed(stations);
    Connection& station = stations.front();
    const std::string status = request("status");
    const std::string shell = request("exec command 5 \"echo enough\"");
    const std::string noPipe = failure("exec", "could not create a pipe for the parent process");

    expectExchange(station, status, failure("status", "Failed to open the /dev/nvsku/rev file"));
    expectExchange(station, request("status 01"),
                   failure("status", "cannot open /mnt/app/img_ver.txt, no information available"));
    expectExchange(station, shell, noPipe);

    const auto leaveFree = [&](std::size_t count) {
        stations.resize(kMostStations - 1 - count); // and the one that is kept for the next connection
        ASSERT_TRUE(hasDescriptors(daemon, kDescriptorLimit - 1 - count));
    };
    leaveFree(1);
    expectSoon(station, status, answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"));
    expectSoon(station, shell, noPipe);
    leaveFree(2);
    expectSoon(station, shell, failure("exec", "Error, the /tmp/resp.txt could not be created"));
    // The shell tells through a pipe whether it has started.
    for (const std::size_t count : {3U, 4U}) {
        leaveFree(count);
        expectSoon(station, shell, failure("exec", "spawn for starting /bin/sh failed"));
    }
    leaveFree(5);
    expectSoon(station, shell, answer("exec base64(" + base64("enough\n") + ")"));
    EXPECT_TRUE(hasDescriptors(daemon, kDescriptorLimit - 6));
    expectHealthy(daemon);
}

constexpr char kNoDispatcher[] = "Prod.testserver: No thread for the dispatcher, giving up\n";
constexpr char kNoSerial[] = "Prod.testserver: No thread for the serial front end\n";
constexpr char kNoNetwork[] = "Prod.testserver: No thread for the network front end\n";
constexpr char kNoFrontEnd[] = "Prod.testserver: No front end could be started, giving up\n";
constexpr int kEndedByAbort = 128 + SIGABRT;

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// A daemon that cannot make these threads; expects it to end with these words.
void expectGivesUp(const std::string& missingThreads, const std::string& words) {
    DaemonStart start;
    start.limits = {{RLIMIT_CORE, 0}};
    start.missingThreads = missingThreads;
    start.waitForPort = false;
    Daemon daemon(start);
    EXPECT_EQ(daemon.waitForEnd(), kEndedByAbort);
    EXPECT_TRUE(contains(daemon.error(), words)) << daemon.error();
}

TEST(NoThreads, ADaemonThatCannotServeEndsAndSaysWhy) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer's library wants to be the first one";
    expectGivesUp("1", kNoDispatcher);
    expectGivesUp("23", std::string(kNoSerial) + kNoNetwork + kNoFrontEnd);
}

TEST(NoThreads, ADaemonWithoutItsLineServesTheNetwork) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer's library wants to be the first one";
    DaemonStart start;
    start.missingThreads = "2";
    const Daemon daemon(start);
    EXPECT_TRUE(daemon.waitForError(kNoSerial));
    Connection station;
    expectExchange(station, request("served"), unknown("served"));
}

// More and more address space, from what no daemon can start with to what is enough.
TEST(NoThreads, ADaemonWithLittleAddressSpaceServesOrEnds) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer needs the address space";
    constexpr rlim_t kStep = rlim_t{64} << 10;
    rlim_t most = 0;
    {
        const Daemon enough;
        most = addressSpaceBytes(enough.pid());
    }
    for (rlim_t bytes = rlim_t{5} << 20; bytes < most; bytes += kStep) {
        SCOPED_TRACE(bytes);
        DaemonStart start;
        start.limits = {{RLIMIT_AS, bytes}, {RLIMIT_CORE, 0}};
        start.waitForPort = false;
        const Daemon daemon(start);
        // Anything else would be a process that stands around for nobody.
        ASSERT_TRUE(eventually([&] {
            const std::string error = daemon.error();
            return !daemon.isAlive() || isListening() ||
                   (contains(error, kNoNetwork) && !contains(error, kNoSerial));
        }));
        if (isListening())
            break;
    }
}

TEST(NoThreads, AStationWaitsUntilThereIsOneForIt) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer needs the address space";
    const Daemon daemon;
    const std::size_t threads = settledThreadCount(daemon.pid());
    daemon.limit(RLIMIT_AS, addressSpaceBytes(daemon.pid()));

    Connection station;
    station.send(request("patient"));
    ASSERT_TRUE(hasDescriptors(daemon, kOwnDescriptors + 1));
    const auto before = processorTime(daemon.pid());
    observeFor(kObservation);
    EXPECT_LT(processorTime(daemon.pid()) - before, kLittleProcessorTime);
    EXPECT_EQ(threadCount(daemon.pid()), threads);
    EXPECT_TRUE(daemon.isAlive());

    daemon.limit(RLIMIT_AS, RLIM_INFINITY);
    expectExchange(station, "", unknown("patient"));
    expectHealthy(daemon);
}

TEST(NoThreads, MoreStationsThanMayWaitToBeAcceptedWaitForTheirs) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer needs the address space";
    constexpr std::size_t kStations = 20;
    const Daemon daemon;
    const std::size_t threads = settledThreadCount(daemon.pid());
    daemon.limit(RLIMIT_AS, addressSpaceBytes(daemon.pid()));

    std::vector<Connection> stations(kStations);
    for (Connection& station : stations)
        station.send(request("patient"));
    ASSERT_TRUE(hasDescriptors(daemon, kOwnDescriptors + kStations)) << "all are accepted";
    EXPECT_EQ(threadCount(daemon.pid()), threads);

    daemon.limit(RLIMIT_AS, RLIM_INFINITY);
    for (Connection& station : stations)
        expectExchange(station, "", unknown("patient"));
    expectHealthy(daemon);
}

TEST(NoThreads, AStationThatDoesNotWaitLeavesNothingBehind) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer needs the address space";
    const Daemon daemon;
    daemon.limit(RLIMIT_AS, addressSpaceBytes(daemon.pid()));
    {
        Connection station;
        station.send(request("impatient"));
        ASSERT_TRUE(hasDescriptors(daemon, kOwnDescriptors + 1));
    }
    daemon.limit(RLIMIT_AS, RLIM_INFINITY);
    EXPECT_TRUE(hasDescriptors(daemon, kOwnDescriptors));
    expectHealthy(daemon);
}

} // namespace
