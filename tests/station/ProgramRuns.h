#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "StationProcess.h"
#include "Steps.h"
#include "Words.h"
#include "support/Rows.h"

namespace station {

/// One run of the program, whose arguments are a line as a shell takes it, against a unit that plays a
/// script.
struct ProgramRun {
    const char* title;
    std::string arguments;
    Steps steps;
    int exitCode;
    testing::Matcher<std::string> output;
    testing::Matcher<std::string> errors;

    friend void PrintTo(const ProgramRun& run, std::ostream* out) { *out << run.arguments; }
};

inline void expectOutcome(const Outcome& outcome, const ProgramRun& run) {
    EXPECT_EQ(outcome.exitCode, run.exitCode);
    EXPECT_THAT(outcome.output, run.output);
    EXPECT_THAT(outcome.errors, run.errors);
}

/// One line with one JSON object, which has these fields and the time that it took.
MATCHER_P(IsObject, expected, "is the object " + expected.dump()) {
    nlohmann::json object = nlohmann::json::parse(arg, nullptr, false);
    if (arg.find('\n') != arg.size() - 1 || !object.is_object() || !object["milliseconds"].is_number() ||
        object["milliseconds"].template get<double>() <= 0)
        return false;
    object.erase("milliseconds");
    return object == expected;
}

/// What the program prints of an answer when it is to print JSON; the payload comes over a binary line
/// only.
inline testing::Matcher<std::string> object(const std::string& name, const std::string& answer,
                                            const nlohmann::json& info, std::uint32_t code,
                                            const char* payload = nullptr) {
    nlohmann::json expected = {{"name", name}, {"answer", answer}, {"info", info}, {"code", code}};
    if (payload != nullptr)
        expected["payload"] = payload;
    return IsObject(expected);
}

const nlohmann::json kNoInfo = nlohmann::json::array();

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
