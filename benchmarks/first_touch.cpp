#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/Connection.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "measuring/Daemon.h"
#include "measuring/PageFaults.h"

using namespace Measuring;

namespace {

constexpr int kRounds = 15;
constexpr std::size_t kPageSize = 4096;
constexpr std::size_t kScratchSize = std::size_t{128} << 20;
constexpr std::size_t kWritten = 244;
// A medium's blocks are pages here.
constexpr std::size_t kBlocks = 256;
// What the first use of a command costs beside: code and heap that nothing has touched before.
constexpr double kPagesBeside = 64;
const Bound kAtMostOfAllPages = Bound::atMost(0.02);

template <typename Run>
double microseconds(const Run& run) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    run();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

/// Time to take memory of the scratch buffer's size from the system and to touch so many of its pages.
double timeToFault(std::size_t pages) {
    std::unique_ptr<char, void (*)(void*)> memory(nullptr, std::free);
    return microseconds([&] {
        memory.reset(static_cast<char*>(std::calloc(kScratchSize, 1)));
        if (!memory)
            throw std::runtime_error("no memory");
        auto* bytes = const_cast<volatile char*>(memory.get());
        for (std::size_t page = 0; page < pages; ++page)
            bytes[page * kPageSize] = 1;
    });
}

/// What comes of a request to a daemon that has not used its scratch buffer yet.
class FirstUse {
public:
    FirstUse(std::string daemon, const std::string& preparation, const std::string& request)
        : m_daemon(std::move(daemon)), m_preparation(framed(preparation)), m_request(framed(request)) {}

    /// What the first request takes longer than the same one once more.
    double operator()() {
        const Daemon daemon(m_daemon);
        Connection connection(Daemon::kPort);
        expectSuccess(connection.exchange(m_preparation));
        const double faultsBefore = pageFaultsOf(daemon.pid());
        const double first = microseconds([&] { expectSuccess(connection.exchange(m_request)); });
        m_faults.push_back(pageFaultsOf(daemon.pid()) - faultsBefore);
        const double second = microseconds([&] { expectSuccess(connection.exchange(m_request)); });
        m_seconds.push_back(second);
        return first - second;
    }

    double faults() const { return median(m_faults); }
    double later() const { return median(m_seconds); }

private:
    static void expectSuccess(std::string_view answer) {
        if (answer.find("Error") != std::string_view::npos)
            throw std::runtime_error("the daemon refuses: " + std::string(answer));
    }

    std::string m_daemon;
    std::string m_preparation;
    std::string m_request;
    std::vector<double> m_faults;
    std::vector<double> m_seconds;
};

struct Subject {
    std::string what;
    std::string preparation;
    std::string request;
    std::size_t pages; ///< of the scratch buffer that it touches
};

std::vector<Subject> subjects() {
    std::string digits;
    for (std::size_t byte = 0; byte < kWritten; ++byte)
        digits += "4a";
    return {{"write of 244 bytes", "ack", "memory write 8bit 244 0 hex(" + digits + ")", 1},
            {"read of 244 bytes", "ack", "memory read 8bit 244 0", 1},
            {"block read of 1 MiB", "blockdev open 180 0",
             "blockdev read 180 0 0 " + std::to_string(kBlocks) + " 0", kBlocks}};
}

void measure(const Options& options, Report& report) {
    const CorePinning pinning(Cores::One);
    for (const Subject& subject : subjects()) {
        FirstUse firstUse(options.daemon, subject.preparation, subject.request);
        Contest contest;
        const std::size_t added = contest.add(std::ref(firstUse));
        const std::size_t touched = contest.add([&] { return timeToFault(subject.pages); });
        const std::size_t all = contest.add([] { return timeToFault(kScratchSize / kPageSize); });
        contest.run(options.rounds(kRounds));

        report.add({"first " + subject.what + ", added, to its pages", contest.result(added), "us",
                    contest.result(touched), contest.ratio(added, touched)});
        report.add({"  to all pages of the buffer", contest.result(added), "us", contest.result(all),
                    contest.ratio(added, all), kAtMostOfAllPages});
        report.add({"  the same once more", firstUse.later(), "us"});
        const double pages = static_cast<double>(subject.pages);
        report.add({"  page faults beyond its " + std::to_string(subject.pages),
                    firstUse.faults() - pages, "", std::nullopt, std::nullopt,
                    Bound::atMost(kPagesBeside)});
    }
    report.note("Page faults include the code of the command and what the heap takes for its answer.");
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "First use of the scratch buffer, 1 core", measure);
}
