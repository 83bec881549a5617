#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

/// Runs `body` in a process that has not done anything yet, for what a process can do only once. Its
/// failed expectations fail the case.
template <typename Body>
void inFreshProcess(Body body) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto runIt = [&body] {
        body();
        std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(runIt(), ::testing::ExitedWithCode(0), "");
}
