#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <string>

#include "model/Generator.h"
#include "model/LiveUnit.h"
#include "model/Player.h"
#include "model/Report.h"
#include "model/Shrinker.h"
#include "support/DaemonTest.h"

namespace {

constexpr char kSeedVariable[] = "MODEL_SEED";
constexpr char kRequestsVariable[] = "MODEL_REQUESTS";
constexpr std::uint64_t kUsualSeed = 20240229;

// A tenth of them where everything takes ten times as long.
constexpr std::uint64_t kUsualRequests = kSanitized ? 5'000 : 15'000;
// For so many the unit runs on; then it is as new, with the next seed. A sequence that fails is no
// longer.
constexpr std::uint64_t kMostInOneRun = 40'000;

// A wrong sequence is played again and again, on a unit that is as new.
constexpr std::size_t kMostAttempts = 2'000;
constexpr std::chrono::minutes kLongestShrinking{5};
constexpr std::chrono::seconds kShortPatience{3};
// What fails only when requests meet does not fail each time.
constexpr int kTries = 3;

// By then all that is written to usually is in memory. A sanitizer sets freed memory aside for long.
constexpr std::size_t kWarmUpShare = 3;
constexpr std::size_t kKibi = 1024;
constexpr std::size_t kMebi = 1024 * kKibi;
constexpr std::size_t kMostGrowth = (kSanitized ? 384 : 4) * kMebi;

std::uint64_t chosen(const char* variable, std::uint64_t usual) {
    const char* text = std::getenv(variable);
    return text == nullptr ? usual : std::strtoull(text, nullptr, 0);
}

/// Whether requests of several links are under way at once.
bool meets(const Sequence& sequence) {
    return std::adjacent_find(sequence.begin(), sequence.end(),
                              [](const Request& one, const Request& other) {
                                  return one.phase == other.phase && one.link != other.link;
                              }) != sequence.end();
}

/// The parameter: whether the station's line carries frames.
class ModelTest : public testing::TestWithParam<bool> {
protected:
    /// One sequence from beginning to end; what is wrong is made short and fails the test.
    void run(std::uint64_t seed, std::size_t requests) {
        std::cout << kSeedVariable << "=" << seed << " " << kRequestsVariable << "=" << requests
                  << std::endl;
        unit.restart();
        Model model = unit.model();
        const Sequence sequence = generate(seed, requests, unit.links(), model);
        played += sequence.size();
        std::size_t before = 0;
        const auto progress = [&](std::size_t at) {
            if (before == 0 && at >= sequence.size() / kWarmUpShare)
                before = residentBytes(unit.daemon().pid());
        };
        if (const auto mismatch = play(sequence, unit, progress))
            return explain(sequence, *mismatch);
        const std::size_t after = residentBytes(unit.daemon().pid());
        EXPECT_LE(after, before + kMostGrowth);
        std::cout << "resident KiB " << before / kKibi << " -> " << after / kKibi << std::endl;
        expectHealthyUnit();
    }

    void expectHealthyUnit() {
        ASSERT_TRUE(unit.daemon().isAlive()) << unit.daemon().error();
        EXPECT_TRUE(unit.isSilent());
        // An acknowledgement may come late on a busy machine, but none is anything else.
        const std::string error = unit.daemon().error();
        EXPECT_EQ(error.find("Received"), std::string::npos) << error;
    }

    std::optional<Mismatch> playAfresh(const Sequence& sequence) {
        try {
            unit.restart();
            return play(sequence, unit);
        } catch (const std::exception& exception) {
            // What was found before is to be told all the same.
            std::cout << "a unit that does not start: " << exception.what() << std::endl;
            return std::nullopt;
        }
    }

    void explain(const Sequence& sequence, const Mismatch& first) {
        unit.setPatience(kShortPatience);
        const auto deadline = std::chrono::steady_clock::now() + kLongestShrinking;
        std::optional<Mismatch> last = first;
        const auto attempt = [&](const Sequence& candidate) -> std::optional<std::size_t> {
            const int most = meets(candidate) ? kTries : 1;
            for (int tries = 0; tries < most && std::chrono::steady_clock::now() < deadline; ++tries) {
                const auto mismatch = playAfresh(candidate);
                if (!mismatch)
                    continue;
                last = mismatch;
                return mismatch->at;
            }
            return std::nullopt;
        };
        Shrinker shrinker(attempt, kMostAttempts);
        const Sequence shortest = shrinker.shrink(sequence, first.at);
        ADD_FAILURE() << "request " << first.at << " of " << sequence.size()
                      << " is answered otherwise; after " << shrinker.attempts() << " attempts "
                      << shortest.size() << " are left:\n"
                      << report(shortest, *last, unit);
    }

    LiveUnit unit{GetParam()};
    std::size_t played = 0;
};

TEST_P(ModelTest, AnswersAsTheModelOfTheUnit) {
    const std::uint64_t seed = chosen(kSeedVariable, kUsualSeed);
    const std::uint64_t requests = chosen(kRequestsVariable, kUsualRequests);
    for (std::uint64_t at = 0; played < requests && !HasFailure(); ++at)
        run(seed + at, std::min(kMostInOneRun, requests - played));
}

INSTANTIATE_TEST_SUITE_P(StationLine, ModelTest, testing::Bool(),
                         [](const auto& info) { return info.param ? "Frames" : "Lines"; });

} // namespace
