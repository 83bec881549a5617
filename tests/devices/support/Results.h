#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <ostream>
#include <string>

#include "devices/DeviceResult.h"

inline void PrintTo(const DeviceResult& result, std::ostream* out) {
    *out << result.code << " \"" << result.message << '"';
}

/// Matches a DeviceResult by both of its parts.
inline auto isFailure(std::int32_t code, const std::string& message) {
    return ::testing::AllOf(::testing::Field("code", &DeviceResult::code, code),
                            ::testing::Field("message", &DeviceResult::message, message));
}

inline auto isSuccess() {
    return isFailure(0, "");
}
