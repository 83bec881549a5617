#include "TransferRun.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "EndCode.h"
#include "Exchange.h"
#include "ExitCode.h"
#include "Report.h"
#include "Stopwatch.h"
#include "session/Interruption.h"
#include "transfer/Job.h"
#include "transfer/OrderLine.h"
#include "transfer/Progress.h"
#include "transfer/Unit.h"
#include "transfer/Watch.h"

namespace station {
namespace {

std::size_t terminalWidth() {
    constexpr std::size_t kUsualWidth = 80;
    winsize size = {};
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    // What fills the last column as well wraps on some terminals.
    return (isKnown ? size.ws_col : kUsualWidth) - 1;
}

ProgressMode progressMode(const std::string& word, bool json) {
    if (word == "bar")
        return ProgressMode::Bar;
    if (word == "plain")
        return ProgressMode::Plain;
    if (word == "none" || (word == "auto" && json))
        return ProgressMode::None;
    if (word == "auto")
        return ::isatty(STDERR_FILENO) != 0 ? ProgressMode::Bar : ProgressMode::Plain;
    throw Failure(Failure::Kind::InvalidRequest,
                  "invalid progress '" + word + "': expected auto, bar, plain or none");
}

/// One transfer, from the checks to the report.
class TransferRun {
public:
    TransferRun(const CommandLine& line, const Order& order, TransferReport& report)
        : m_line(line), m_order(order), m_report(report) {}

    /// Returns the program's exit code.
    int run() {
        const Stopwatch stopwatch;
        try {
            carryOut();
            m_report.done(m_figures, stopwatch.seconds());
            return static_cast<int>(ExitCode::Success);
        } catch (const std::exception& error) {
            m_report.failed(error.what() + howFar(), m_figures, stopwatch.seconds());
            return endCode(error);
        }
    }

private:
    void carryOut() {
        const auto mode =
            progressMode(m_order.progress.empty() ? m_line.progress : m_order.progress, m_line.json);
        m_job = makeJob(m_order);
        const auto progress =
            makeProgress(mode, std::cerr, terminalWidth(), std::chrono::steady_clock::now);
        const auto onInfo = [&](const std::string& message) {
            progress->pause();
            m_report.info(message);
        };
        Watch watch{*progress, [&](const std::string& note) {
                        progress->pause();
                        m_report.note(note);
                    }};
        const auto session = openSession(m_line, m_interruption, onInfo);
        // Until here there is nothing to be put in order, and a signal ends the program as ever.
        const SignalWatch signals(m_interruption);
        m_isBegun = true;
        Unit unit(*session, m_interruption, onInfo);
        m_job->run(unit, watch, m_figures);
    }

    std::string howFar() const {
        if (!m_isBegun)
            return {};
        const std::string total = m_figures.total == 0 ? "" : " of " + std::to_string(m_figures.total);
        return "; " + std::to_string(m_figures.done) + total + " bytes verified; " +
               m_job->leftover(m_figures);
    }

    const CommandLine& m_line;
    const Order& m_order;
    TransferReport& m_report;
    Interruption m_interruption;
    std::unique_ptr<Job> m_job;
    Figures m_figures;
    bool m_isBegun = false;
};

} // namespace

int runTransfer(const CommandLine& line) {
    try {
        const auto order = parseOrder(line.name, line.arguments, std::cout);
        if (!order)
            return static_cast<int>(ExitCode::Success);
        const auto report = line.json ? makeJsonTransferReport(*order) : makeTextTransferReport();
        return TransferRun(line, *order, *report).run();
    } catch (const Failure& failure) {
        std::cerr << "station: " << failure.what() << '\n';
        return static_cast<int>(exitCode(failure));
    }
}

} // namespace station
