#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/DaemonTest.h"
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

TEST(FewDescriptors, CommandsTellWhatTheyCouldNotOpen) {
    if (kAddressSanitized)
        GTEST_SKIP() << "a sanitizer needs descriptors for its own checks";
    const Daemon daemon(withFewDescriptors());
    std::vector<Connection> stations = acceptedStations(kMostStations);
    expectServed(stations);
    Connection& station = stations.front();
    const std::string shell = request("exec command 5 \"echo enough\"");

    expectExchange(station, request("status"),
                   failure("status", "Failed to open the /dev/nvsku/rev file"));
    expectExchange(station, request("status 01"),
                   failure("status", "cannot open /mnt/app/img_ver.txt, no information available"));
    expectExchange(station, shell, failure("exec", "could not create a pipe for the parent process"));

    stations.pop_back();
    ASSERT_TRUE(hasDescriptors(daemon, kDescriptorLimit - 1));
    expectExchange(station, request("status"),
                   answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"));
    expectExchange(station, shell, failure("exec", "could not create a pipe for the parent process"));

    stations.pop_back();
    ASSERT_TRUE(hasDescriptors(daemon, kDescriptorLimit - 2));
    expectExchange(station, shell, failure("exec", "Error, the /tmp/resp.txt could not be created"));

    stations.pop_back();
    ASSERT_TRUE(hasDescriptors(daemon, kDescriptorLimit - 3));
    expectExchange(station, shell, answer("exec base64(" + base64("enough\n") + ")"));
    EXPECT_TRUE(hasDescriptors(daemon, kDescriptorLimit - 3));
    expectHealthy(daemon);
}

TEST(NoThreads, AStationWaitsUntilThereIsOneForIt) {
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer needs the address space";
    const Daemon daemon;
    const std::size_t threads = threadCount(daemon.pid());
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
