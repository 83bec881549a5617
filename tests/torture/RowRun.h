#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "Link.h"
#include "Row.h"
#include "Table.h"

/// One row over one link, as a test: it has a daemon, is carried out, and the daemon is looked at.
class RowRun : public testing::Test {
public:
    RowRun(const Row& row, Link link, std::uint64_t seed, bool isLong)
        : m_row(row), m_link(link), m_seed(seed), m_isLong(isLong) {}

    void TestBody() override;

    /// In the order in which they were carried out.
    static std::vector<Result>& results();

    /// Ends the daemon that the rows share.
    static void endDaemon();

private:
    void carryOut(Bench& bench, Result& result);

    const Row& m_row;
    const Link m_link;
    const std::uint64_t m_seed;
    const bool m_isLong;
};
