#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

/// What the command line asks for.
struct Options {
    bool isLong = true;
    bool list = false;
    std::uint64_t seed = 20240229;
    std::set<std::string> rows; ///< all when empty
};

/// Nothing, and a word on standard error, when it makes no sense.
std::optional<Options> optionsIn(int argc, char** argv);
