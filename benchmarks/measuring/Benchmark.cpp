#include "measuring/Benchmark.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "measuring/Daemon.h"

namespace Measuring {

namespace {

constexpr int kBoundMissed = 1;
constexpr int kNotMeasured = 2;

} // namespace

int runBenchmark(int argc, char** argv, const std::string& title,
                 const std::function<void(const Options&, Report&)>& body) {
    Options options;
    CLI::App app(title);
    app.add_flag("--quick", options.quick, "Fewer rounds and smaller sizes");
    app.add_flag("--check", options.check, "Exit with 1 when a bound is not kept");
    app.add_option("--daemon", options.daemon, "The program to measure (default: the one beside this)");
    CLI11_PARSE(app, argc, argv);

    try {
        if (options.daemon.empty())
            options.daemon = daemonBesideThisProgram();
        Report report(title);
        body(options, report);
        report.print();
        return options.check && !report.keepsAllBounds() ? kBoundMissed : 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), error.what());
        return kNotMeasured;
    }
}

} // namespace Measuring
