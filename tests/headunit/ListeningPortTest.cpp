#include "unit/ListeningPort.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/Rows.h"

namespace headunit {
namespace {

constexpr char kHeader[] =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n";

struct TableCase {
    const char* title;
    const char* line;
    bool listens;
};

void PrintTo(const TableCase& row, std::ostream* out) {
    *out << row.title;
}

class ListeningTable : public testing::TestWithParam<TableCase> {};

TEST_P(ListeningTable, TellsWhetherAConnectionWouldBeAccepted) {
    std::istringstream table(kHeader + std::string(GetParam().line));
    EXPECT_EQ(listsListener(table, 15051), GetParam().listens);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ListeningTable,
    testing::Values(
        TableCase{"empty", "", false},
        TableCase{"loopback", "   0: 0100007F:3ACB 00000000:0000 0A 00000000:00000000 00:00000000\n",
                  true},
        TableCase{"anyAddress", "   0: 00000000:3ACB 00000000:0000 0A 00000000:00000000\n", true},
        TableCase{"anyAddress6",
                  "   0: 00000000000000000000000000000000:3ACB "
                  "00000000000000000000000000000000:0000 0A 0:0\n",
                  true},
        TableCase{"mappedLoopback",
                  "   0: 0000000000000000FFFF00000100007F:3ACB "
                  "00000000000000000000000000000000:0000 0A 0:0\n",
                  true},
        TableCase{"loopback6Alone",
                  "   0: 00000000000000000000000001000000:3ACB "
                  "00000000000000000000000000000000:0000 0A 0:0\n",
                  false},
        TableCase{"otherPort", "   0: 0100007F:3ACC 00000000:0000 0A 00000000:00000000\n", false},
        TableCase{"otherAddress", "   0: 0A00A8C0:3ACB 00000000:0000 0A 00000000:00000000\n", false},
        TableCase{"connected", "   0: 0100007F:3ACB 0100007F:8000 01 00000000:00000000\n", false},
        TableCase{"closing", "   0: 0100007F:3ACB 0100007F:8000 06 00000000:00000000\n", false},
        TableCase{"secondLine",
                  "   0: 0100007F:0016 00000000:0000 0A 0:0\n"
                  "   1: 0100007F:3ACB 00000000:0000 0A 0:0\n",
                  true},
        TableCase{"garbage", "no table at all\n", false}),
    titleOf);

} // namespace
} // namespace headunit
