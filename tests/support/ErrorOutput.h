#pragma once

#include <gtest/gtest.h>

#include <string>

/// What `action` has written to standard error.
template <typename Action>
std::string errorOutputOf(Action action) {
    ::testing::internal::CaptureStderr();
    action();
    return ::testing::internal::GetCapturedStderr();
}
