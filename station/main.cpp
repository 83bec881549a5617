#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iostream>

#include "CommandLine.h"
#include "Exchange.h"
#include "Report.h"
#include "Stopwatch.h"
#include "TerminalRun.h"
#include "TransferRun.h"
#include "terminal/TerminalOrder.h"
#include "transfer/OrderLine.h"

namespace station {
namespace {

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

int run(int argc, const char* const* argv) {
    CommandLine line;
    if (const auto ended = line.parse(argc, argv))
        return static_cast<int>(*ended);
    if (isTransfer(line.name, line.arguments))
        return runTransfer(line);
    if (isTerminal(line.name, line.arguments))
        return runTerminal(line);
    const auto report = line.json ? makeJsonReport(line.name) : makeTextReport();
    return static_cast<int>(execute(line, *report));
}

int runAndFlush(int argc, const char* const* argv) {
    const int code = run(argc, argv);
    if (std::cout.flush())
        return code;
    std::cerr << "station: cannot write to standard output\n";
    return static_cast<int>(ExitCode::Unexpected);
}

/// Puts something unusable in the place of a standard stream that was closed, or the link to the unit
/// would take its number and be read and written in its place.
void holdStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0 && errno == EBADF)
            static_cast<void>(::open("/dev/null", O_RDONLY));
}

} // namespace
} // namespace station

int main(int argc, char** argv) {
    station::holdStandardStreams();
    // A reader that has gone shows as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return station::runAndFlush(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "station: " << error.what() << '\n';
        return static_cast<int>(station::ExitCode::Unexpected);
    }
}
