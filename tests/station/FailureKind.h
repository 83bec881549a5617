#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <utility>

#include "client/Failure.h"

namespace station {

/// What `action` fails with; a test failure when it does not.
template <typename Action>
std::optional<std::pair<Failure::Kind, std::string>> failureOf(Action action) {
    try {
        action();
    } catch (const Failure& failure) {
        return std::pair(failure.kind(), std::string(failure.what()));
    }
    ADD_FAILURE() << "nothing failed";
    return std::nullopt;
}

inline auto FailsWith(Failure::Kind kind, const std::string& part) {
    return testing::Optional(testing::Pair(kind, testing::HasSubstr(part)));
}

} // namespace station
