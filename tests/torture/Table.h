#pragma once

#include <chrono>
#include <iosfwd>
#include <string>
#include <vector>

#include "Checks.h"
#include "Link.h"
#include "Ordeal.h"

/// What came of one row over one link.
struct Result {
    std::string row;
    Link link;
    Amount amount = {};
    std::chrono::milliseconds duration{};
    std::chrono::milliseconds answerTime{}; ///< afterwards
    Figures before = {};
    Figures after = {};
    std::string verdict = {}; ///< "passed", "FAILED", "left out"
    std::string note = {};
};

void printTable(std::ostream& out, const std::vector<Result>& results);
