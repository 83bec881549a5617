#include "Checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/Connection.h"
#include "support/DaemonTest.h"
#include "support/Waiting.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kAttempts = 5;
// Far from what the rows write.
constexpr unsigned kProbeAddress = 0x7000000;

/// The best of a few attempts, as soon as one is good enough.
std::chrono::milliseconds timeOf(const ByteStream& station, const Spoken& spoken) {
    Clock::duration best = Clock::duration::max();
    for (int attempt = 0; attempt < kAttempts && best > kPromisedAnswer; ++attempt) {
        const auto begin = Clock::now();
        expectExchange(station, spoken.sent, spoken.received);
        best = std::min(best, Clock::now() - begin);
    }
    return std::chrono::ceil<std::chrono::milliseconds>(best);
}

/// Threads and descriptors of connections that have gone go a moment later.
void expectRest(const Bench& bench) {
    const auto isAtRest = [&] {
        const Figures now = Figures::of(bench.daemon());
        return now.descriptors == bench.descriptors() && now.threads == bench.threads() &&
               now.children == 0;
    };
    if (eventually(isAtRest))
        return;
    const Figures now = Figures::of(bench.daemon());
    ADD_FAILURE() << "descriptors " << now.descriptors << " instead of " << bench.descriptors()
                  << ", threads " << now.threads << " instead of " << bench.threads() << ", children "
                  << now.children << " instead of 0";
}

void expectNothingFromASanitizer(const std::string& error) {
    for (const char* words : {"Sanitizer", "runtime error:"})
        EXPECT_EQ(error.find(words), std::string::npos) << error;
}

} // namespace

Figures Figures::of(const Daemon& daemon) {
    return {openDescriptors(daemon.pid()).size(), threadCount(daemon.pid()),
            childrenOf(daemon.pid()).size()};
}

std::chrono::milliseconds answerTime(Bench& bench) {
    static unsigned s_round = 0;
    const std::string content = "probe" + std::to_string(++s_round);
    const Connection station;
    const Spoken write = memoryWrite(Link::Tcp, kProbeAddress, content);
    expectExchange(station, write.sent, write.received);
    return std::max({timeOf(station, {request("status"), bench.statusLine()}),
                     timeOf(station, memoryRead(Link::Tcp, kProbeAddress, content)),
                     timeOf(bench.line(), memoryRead(bench.serial(), kProbeAddress, content))});
}

Figures checkAfterwards(Bench& bench, std::size_t errorsBefore) {
    const Daemon& daemon = bench.daemon();
    const std::string error = daemon.error();
    const std::string newErrors = error.substr(std::min(errorsBefore, error.size()));
    // The test's own child, which nobody else collects: one that lives is the one that was started.
    EXPECT_TRUE(daemon.isAlive()) << "the daemon has ended; its last words: " << newErrors;
    if (!daemon.isAlive())
        return {};
    expectRest(bench);
    expectNothingFromASanitizer(newErrors);
    return Figures::of(daemon);
}
