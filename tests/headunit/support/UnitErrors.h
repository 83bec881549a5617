#pragma once

#include <gtest/gtest.h>

#include <string>

#include "unit/UnitError.h"

namespace headunit_test {

/// What the UnitError says with which `action` fails; a test failure when it does not.
template <typename Action>
std::string unitErrorOf(Action action) {
    try {
        action();
    } catch (const headunit::UnitError& error) {
        return error.what();
    }
    ADD_FAILURE() << "no error";
    return {};
}

} // namespace headunit_test
