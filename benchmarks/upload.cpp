#include <algorithm>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/ChildProcess.h"
#include "measuring/Connection.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "measuring/Daemon.h"
#include "measuring/Failure.h"

using namespace Measuring;

namespace {

constexpr int kRounds = 5;
constexpr std::size_t kBytesPerWrite = 244;
constexpr double kMebi = 1024.0 * 1024.0;
constexpr std::size_t kBytes = 4 * 1024 * 1024;
constexpr std::size_t kWrites = (kBytes + kBytesPerWrite - 1) / kBytesPerWrite;
const Bound kAtLeastOfAcks = Bound::atLeast(0.8);
constexpr char kFile[] = "/tmp/benchmark_upload.bin";

std::string dataAt(std::size_t address) {
    std::string data(std::min(kBytesPerWrite, kBytes - address), '\0');
    for (char& byte : data)
        byte = static_cast<char>(address++ * 31 >> 3);
    return data;
}

std::string hexDigits(const std::string& bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    for (const char byte : bytes) {
        digits += kDigits[static_cast<unsigned char>(byte) >> 4];
        digits += kDigits[static_cast<unsigned char>(byte) & 0x0F];
    }
    return digits;
}

/// The requests that store 4 MiB.
std::vector<std::string> writes() {
    std::vector<std::string> requests;
    for (std::size_t address = 0; address < kBytes; address += kBytesPerWrite) {
        const std::string data = dataAt(address);
        requests.push_back(framed("memory write 8bit " + std::to_string(data.size()) + " " +
                                  std::to_string(address) + " hex(" + hexDigits(data) + ")"));
    }
    return requests;
}

void makeFile() {
    std::ofstream file(kFile, std::ios::binary | std::ios::trunc);
    for (std::size_t address = 0; address < kBytes; address += kBytesPerWrite)
        file << dataAt(address);
    if (!file.flush())
        throw failure(std::string("cannot write ") + kFile);
}

template <typename Run>
double seconds(const Run& run) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    run();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Sends each request when the one before it has been answered.
void sendAll(Connection& connection, const std::vector<std::string>& requests,
             const std::string& answer) {
    for (const std::string& request : requests)
        if (connection.exchange(request) != answer)
            throw std::runtime_error("an answer is wrong");
}

/// The tester's own program, which also starts, reads the file and connects.
class StationUpload {
public:
    StationUpload() : m_station(programBesideThis("station")) {}

    bool isThere() const {
        return ChildProcess::command({m_station, "memory", "upload", "--help"}).waitForEnd() == 0;
    }

    void operator()() const {
        const int code = ChildProcess::command({m_station, "--target", "tcp:127.0.0.1:15051",
                                                "--progress", "none", "memory", "upload", kFile})
                             .waitForEnd();
        if (code != 0)
            throw std::runtime_error("the station's upload ends with " + std::to_string(code));
    }

private:
    std::string m_station;
};

void measure(Cores cores, const Options& options, Report& report) {
    const CorePinning pinning(cores);
    const Daemon daemon(options.daemon);
    Connection connection(Daemon::kPort);
    const std::vector<std::string> requests = writes();
    const std::vector<std::string> acknowledgements(kWrites, framed("ack"));
    const std::string acknowledged = framed("#");
    const StationUpload station;
    const bool hasStation = station.isThere();

    Contest contest;
    const std::size_t ack = contest.add(
        [&] { return seconds([&] { sendAll(connection, acknowledgements, acknowledged); }); });
    const std::size_t bare = contest.add(
        [&] { return seconds([&] { sendAll(connection, requests, framed("#memory ok")); }); });
    const std::size_t whole = hasStation ? contest.add([&] { return seconds(station); }) : 0;
    contest.run(options.rounds(kRounds));

    const std::string where = std::string(", ") + nameOf(cores);
    const auto rate = [&](std::size_t contender) {
        return static_cast<double>(kWrites) / contest.result(contender) / 1000;
    };
    report.add({"memory writes of 244 bytes to ack" + where, rate(bare), "1000/s", rate(ack),
                contest.ratio(ack, bare)});
    report.add({"  bytes uploaded" + where, kBytes / kMebi / contest.result(bare), "MiB/s"});
    if (hasStation) {
        report.add({"station memory upload of 4 MiB to the bare loop" + where,
                    contest.result(whole) * 1000, "ms", contest.result(bare) * 1000,
                    contest.ratio(whole, bare)});
        Row row{"  its writes to ack" + where, rate(whole), "1000/s", rate(ack),
                contest.ratio(ack, whole)};
        if (cores == Cores::One)
            row.bound = kAtLeastOfAcks;
        report.add(row);
    } else {
        report.note("The station's upload was not measured" + where + ": it has no 'memory upload'.");
    }
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Upload to the scratch buffer",
                        [](const Options& options, Report& report) {
                            makeFile();
                            measure(Cores::One, options, report);
                            measure(Cores::All, options, report);
                        });
}
