// More stations than the daemon has descriptors for, and all of them want more.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Ordeal.h"
#include "rows/Answered.h"
#include "rows/Rows.h"
#include "support/Waiting.h"

namespace {

// As many as may wait to be accepted.
constexpr std::size_t kSurplus = 5;

std::size_t descriptorLimit(const Daemon& daemon) {
    rlimit limit{};
    ::prlimit(daemon.pid(), RLIMIT_NOFILE, nullptr, &limit);
    return limit.rlim_cur;
}

} // namespace

void fewDescriptors(Ordeal& ordeal) {
    const std::size_t limit = descriptorLimit(ordeal.bench.daemon());
    const std::size_t served = limit - ordeal.bench.descriptors();
    const Spoken shell = shellCommand(Link::Tcp, 60, "echo enough", "enough\n");
    const Spoken file = {request("status 02"),
                         answer("status base64(" + base64("0323814000427\n") + ")")};
    const Spoken lineShell = shellCommand(ordeal.link, 60, "echo enough", "enough\n");
    for (unsigned round = 0; round < ordeal.times(3, 200) && !testing::Test::HasFailure(); ++round) {
        std::vector<Connection> stations;
        for (unsigned number = 0; number < served; ++number)
            expectExchange(stations.emplace_back(), numbered(Link::Tcp, number).sent,
                           numbered(Link::Tcp, number).received);
        for (std::size_t number = served; number < served + kSurplus; ++number)
            stations.emplace_back().send(numbered(Link::Tcp, static_cast<unsigned>(number)).sent);
        ordeal.amount.connections += stations.size();
        // Nothing is left for a command, on whichever link.
        for (const Spoken& asked : {shell, file})
            for (const std::size_t at : {std::size_t{0}, served / 2})
                EXPECT_NE(reactionTo(stations[at], Link::Tcp, asked), Reaction::Ended);
        EXPECT_NE(reactionTo(ordeal.bench.line(), ordeal.link, lineShell), Reaction::Ended);
        ordeal.amount.requests += stations.size() + 5;
        // Who waited is served as soon as others have left.
        for (std::size_t at = 0; at < kSurplus; ++at) {
            stations[at].vanish();
            expectExchange(stations[served + at], "",
                           numbered(Link::Tcp, static_cast<unsigned>(served + at)).received);
        }
    }
    EXPECT_TRUE(eventually([&] {
        return openDescriptors(ordeal.bench.daemon().pid()).size() == ordeal.bench.descriptors();
    }));
    ordeal.expect(lineShell);
}
