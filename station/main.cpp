#include <chrono>
#include <csignal>
#include <iostream>

#include "CommandLine.h"
#include "Exchange.h"
#include "Report.h"

namespace station {
namespace {

class Stopwatch {
public:
    double milliseconds() const {
        const auto elapsed = std::chrono::steady_clock::now() - m_start;
        return std::chrono::duration<double, std::milli>(elapsed).count();
    }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

ExitCode execute(const CommandLine& line, Report& report) {
    const Stopwatch stopwatch;
    try {
        const Answer answer = exchange(line, report);
        report.answered(answer, stopwatch.milliseconds());
        return exitCode(answer);
    } catch (const Failure& failure) {
        report.failed(failure, stopwatch.milliseconds());
        return exitCode(failure);
    }
}

ExitCode run(int argc, const char* const* argv) {
    CommandLine line;
    if (const auto ended = line.parse(argc, argv))
        return *ended;
    const auto report = line.json ? makeJsonReport(line.name) : makeTextReport();
    return execute(line, *report);
}

ExitCode runAndFlush(int argc, const char* const* argv) {
    const ExitCode code = run(argc, argv);
    if (std::cout.flush())
        return code;
    std::cerr << "station: cannot write to standard output\n";
    return ExitCode::Unexpected;
}

} // namespace
} // namespace station

int main(int argc, char** argv) {
    // A reader that has gone shows as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return static_cast<int>(station::runAndFlush(argc, argv));
    } catch (const std::exception& error) {
        std::cerr << "station: " << error.what() << '\n';
        return static_cast<int>(station::ExitCode::Unexpected);
    }
}
