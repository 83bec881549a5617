#include "RowRun.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "Checks.h"
#include "Ordeal.h"

namespace {

/// The daemon, which most rows share: what one of them has left behind meets the next.
std::unique_ptr<Bench> s_bench;
bool s_isShared = false;

Bench& benchFor(const Needs& needs, Link serial) {
    const bool fits = s_bench && s_isShared && !needs.ownDaemon && s_bench->serial() == serial;
    if (!fits) {
        s_bench.reset(); // there is one port for both
        s_bench = std::make_unique<Bench>(serial, needs);
        s_isShared = !needs.ownDaemon;
    }
    return *s_bench;
}

/// The next row begins with a sound one.
void endFailedDaemon() {
    constexpr std::size_t kLastWords = 2000;
    if (!s_bench)
        return;
    const std::string words = s_bench->daemon().error();
    std::cout << "the daemon's last words: "
              << words.substr(words.size() - std::min(words.size(), kLastWords)) << std::endl;
    s_bench.reset();
}

} // namespace

std::vector<Result>& RowRun::results() {
    static std::vector<Result> s_results;
    return s_results;
}

void RowRun::endDaemon() {
    s_bench.reset();
}

void RowRun::TestBody() {
    Result& result = results().emplace_back(Result{m_row.name, m_link});
    try {
        if (kSanitized && m_row.notSanitized != nullptr)
            GTEST_SKIP() << m_row.notSanitized;
        carryOut(benchFor(m_row.needs, m_link == Link::Lines ? Link::Lines : Link::Frames), result);
    } catch (const std::exception& exception) {
        ADD_FAILURE() << exception.what();
    }
    if (HasFailure())
        endFailedDaemon();
}

void RowRun::carryOut(Bench& bench, Result& result) {
    using Clock = std::chrono::steady_clock;
    using std::chrono::milliseconds;
    const std::size_t errorsBefore = bench.daemon().error().size();
    result.before = Figures::of(bench.daemon());
    const auto begin = Clock::now();
    {
        Ordeal ordeal(bench, m_link, m_seed, m_isLong);
        try {
            m_row.run(ordeal);
        } catch (const std::exception& exception) {
            ADD_FAILURE() << exception.what();
        }
        result.amount = ordeal.amount;
        result.note = ordeal.note;
    }
    result.duration = std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
    result.after = checkAfterwards(bench, errorsBefore);
    if (!bench.daemon().isAlive() || HasFailure())
        return;
    result.answerTime = answerTime(bench);
    EXPECT_LE(result.answerTime, kPromisedAnswer) << "each time";
    // The connection that measured it goes.
    result.after = checkAfterwards(bench, errorsBefore);
}
