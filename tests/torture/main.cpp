// torture: ill-treats the daemon from outside, row by row, and looks at it after each.
#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Mounts.h"
#include "Options.h"
#include "Row.h"
#include "RowRun.h"

namespace {

constexpr int kWrongUse = 2;

/// Says what goes on: each violation as it is found, and what became of each row.
class Reporter : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { m_reason.clear(); }

    void OnTestPartResult(const testing::TestPartResult& part) override {
        if (part.failed())
            std::cout << part.file_name() << ":" << part.line_number() << ": " << part.message()
                      << std::endl;
        if (part.skipped())
            m_reason = part.message();
    }

    void OnTestEnd(const testing::TestInfo& info) override {
        Result& result = RowRun::results().back();
        result.verdict = info.result()->Passed() ? "passed" : "FAILED";
        if (info.result()->Skipped()) {
            result.verdict = "left out";
            result.note = m_reason;
        }
        std::cout << result.verdict << " " << info.name() << " " << result.note << std::endl;
    }

    std::string m_reason;
};

void registerRun(const Row& row, Link link, const Options& options) {
    const std::string name = row.name + "/" + nameOf(link);
    testing::RegisterTest("torture", name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [&row, link, options]() -> testing::Test* {
                              return new RowRun(row, link, options.seed, options.isLong);
                          });
}

/// Those that share a daemon come one after the other: first with frames on its line, then with lines.
void registerRuns(const Options& options) {
    constexpr std::pair<bool, bool> kTurns[] = {
        {false, false}, {false, true}, {true, false}, {true, true}};
    for (const auto& [ownDaemon, lines] : kTurns)
        for (const Row& row : allRows())
            for (const Link link : row.links)
                if (row.needs.ownDaemon == ownDaemon && (link == Link::Lines) == lines &&
                    (options.rows.empty() || options.rows.count(row.name) != 0))
                    registerRun(row, link, options);
}

int listRows() {
    for (const Row& row : allRows())
        std::cout << row.name << ": " << row.what << "\n";
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::optional<Options> options = optionsIn(argc, argv);
    if (!options)
        return kWrongUse;
    if (options->list)
        return listRows();
    becomeOwnerOfMounts();
    testing::InitGoogleTest();
    testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
    delete listeners.Release(listeners.default_result_printer());
    listeners.Append(new Reporter);
    registerRuns(*options);
    std::cout << "seed " << options->seed << (options->isLong ? ", long" : ", short") << std::endl;
    const int result = RUN_ALL_TESTS();
    RowRun::endDaemon();
    std::cout << "\n";
    printTable(std::cout, RowRun::results());
    return result;
}
