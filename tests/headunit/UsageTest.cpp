#include <gmock/gmock.h>

#include "support/HeadunitTest.h"
#include "support/Rows.h"

namespace headunit_test {
namespace {

using testing::HasSubstr;

struct UsageCase {
    const char* title;
    std::vector<std::string> arguments;
    const char* error;
};

void PrintTo(const UsageCase& row, std::ostream* out) {
    *out << row.title;
}

class Usage : public HeadunitTest, public testing::WithParamInterface<UsageCase> {};

TEST_P(Usage, IsAnErrorWithStatusTwo) {
    const Outcome outcome = outcomeOf(joined({HEADUNIT_PROGRAM}, GetParam().arguments));
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().error));
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, Usage,
    testing::Values(
        UsageCase{"nothing", {}, "A subcommand is required"},
        UsageCase{"unknownCommand", {"fly"}, "A subcommand is required"},
        UsageCase{"execWithoutCommand", {"exec"}, "a command is missing"},
        UsageCase{"execWithNothingAfterTheSeparator", {"exec", "--"}, "a command is missing"},
        UsageCase{"execWithoutSeparator", {"exec", "true"}, "true"},
        UsageCase{"execUnknownOption", {"exec", "--fast", "--", "true"}, "--fast"},
        UsageCase{
            "execUnknownVariant", {"exec", "--variant", "G12", "--", "true"}, "{PAG,G11,G22,G24,G21}"},
        UsageCase{"runUnknownVariant", {"run", "--variant", "g11"}, "g11"},
        UsageCase{"runWithCommand", {"run", "--", "true"}, "'run' takes no command"},
        UsageCase{"runUnknownOption", {"run", "--fast"}, "--fast"},
        UsageCase{"inPlaceWithUnit", {"run", "--in-place", "--unit", "/x"}, "--unit"},
        UsageCase{"confirmationAlone", {"run", "--yes-change-this-machine"}, "--in-place"}),
    titleOf);

TEST(Help, ShowsTheCommandsAndExamples) {
    Program program({HEADUNIT_PROGRAM, "--help"});
    EXPECT_EQ(program.wait(), 0);
    for (const char* part : {"run", "exec", "Examples:", "headunit exec -- ls /dev/nvgpio"})
        EXPECT_THAT(program.output(), HasSubstr(part));
}

} // namespace
} // namespace headunit_test
