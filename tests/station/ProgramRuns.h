#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "StationProcess.h"
#include "Words.h"

namespace station {

/// One run of the program, whose arguments are a line as a shell takes it, against a unit that takes one
/// request and sends a reply.
struct ProgramRun {
    const char* title;
    std::string arguments;
    std::string request;
    std::string reply;
    int exitCode;
    testing::Matcher<std::string> output;
    testing::Matcher<std::string> errors;

    friend void PrintTo(const ProgramRun& run, std::ostream* out) { *out << run.arguments; }
};

inline std::string titleOf(const testing::TestParamInfo<ProgramRun>& info) {
    return info.param.title;
}

inline void expectOutcome(const Outcome& outcome, const ProgramRun& run) {
    EXPECT_EQ(outcome.exitCode, run.exitCode);
    EXPECT_THAT(outcome.output, run.output);
    EXPECT_THAT(outcome.errors, run.errors);
}

/// Arguments that are wrong whatever the unit does, and a part of what is said about them.
struct Misuse {
    std::string arguments;
    std::string message;

    friend void PrintTo(const Misuse& row, std::ostream* out) {
        *out << testing::PrintToString(row.arguments);
    }
};

inline void expectMisuse(const Outcome& outcome, const std::string& message) {
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors,
                testing::AllOf(testing::StartsWith("station: "), testing::HasSubstr(message)));
}

} // namespace station
