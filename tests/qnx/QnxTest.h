#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake/FakeSystem.h"

/// The next wait for another process's answer to a request is ended after `kLongestAnswer`.
inline constexpr char kAnswerLimit[] = "TimerTimeout 0 0x50 null 10000000000 null";

/// A fresh fake for each test; what was prepared for a call that never came is a failure.
class QnxTest : public ::testing::Test {
protected:
    QnxTest() { FakeSystem::reset(); }

    void TearDown() override {
        EXPECT_THAT(FakeSystem::leftOver(), ::testing::IsEmpty()) << "calls that did not come";
        FakeSystem::reset();
    }
};

/// That these are all calls since the last look, in their order.
#define EXPECT_CALLS(...) EXPECT_THAT(FakeSystem::calls(), ::testing::ElementsAre(__VA_ARGS__))
