#pragma once

#include <functional>
#include <string>

#include "measuring/Report.h"

namespace Measuring {

struct Options {
    /// Fewer rounds and smaller sizes: a first look, not a result.
    bool quick = false;
    /// A bound that is not kept makes the exit code 1.
    bool check = false;
    /// Path of the program that is measured.
    std::string daemon;

    int rounds(int usual) const { return quick ? 3 : usual; }
};

/// The `main` of a benchmark program: reads the command line, has the body fill the table, prints it.
/// Returns the exit code: 0, or 1 as asked for with --check, or 2 when it could not measure.
int runBenchmark(int argc, char** argv, const std::string& title,
                 const std::function<void(const Options&, Report&)>& body);

} // namespace Measuring
