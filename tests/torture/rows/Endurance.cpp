// All kinds of requests for a long time, and how much the daemon grows meanwhile.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "Ordeal.h"
#include "rows/Devices.h"
#include "rows/Rows.h"
#include "support/Parallel.h"
#include "support/Waiting.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kStations = 4; // the first one is the line's

constexpr unsigned kOneShellIn = 200;
constexpr std::chrono::milliseconds kBetweenSamples{250};
constexpr double kKibi = 1024;
// A sanitizer sets freed memory aside for long.
constexpr double kMostDriftKibi = (kSanitized ? 384 : 1) * kKibi;

/// What the daemon has at one moment, beside the stations' connections.
struct Sample {
    double seconds;
    double residentKibi;
    std::size_t descriptors;
    std::size_t threads;
};

/// The line through the samples that misses them least: KiB per second.
double slopeOf(const std::vector<Sample>& samples) {
    double meanSeconds = 0;
    double meanKibi = 0;
    for (const Sample& sample : samples) {
        meanSeconds += sample.seconds / static_cast<double>(samples.size());
        meanKibi += sample.residentKibi / static_cast<double>(samples.size());
    }
    double product = 0;
    double square = 0;
    for (const Sample& sample : samples) {
        product += (sample.seconds - meanSeconds) * (sample.residentKibi - meanKibi);
        square += (sample.seconds - meanSeconds) * (sample.seconds - meanSeconds);
    }
    return product / square;
}

/// The stations' requests, until they are told to stop. Each station knows what it has to get.
class Work {
public:
    Work(Ordeal& ordeal, Clock::time_point end) : m_ordeal(ordeal), m_end(end) {}

    void runStation(std::size_t number) {
        if (number == 0)
            return ask(number, m_ordeal.bench.line(), m_ordeal.link);
        ask(number, Connection(), Link::Tcp);
    }

    std::size_t answered() const { return m_answered; }
    bool isOver() const { return Clock::now() >= m_end || testing::Test::HasFailure(); }

private:
    void ask(std::size_t station, const ByteStream& stream, Link link) {
        const auto expect = [&](const Spoken& spoken) {
            expectExchange(stream, spoken.sent, spoken.received);
            ++m_answered;
        };
        const auto address = static_cast<std::uint32_t>(0x700 + 0x100 * station);
        for (unsigned number = 0; !isOver(); ++number) {
            const std::string bytes = "station " + std::to_string(number);
            expect(numbered(link, number));
            expect(memoryWrite(link, address, bytes));
            expect(memoryRead(link, address, bytes));
            if (number % kOneShellIn == 0)
                expect(shellCommand(link, 60, "echo " + bytes, bytes + "\n"));
            // What is open is everybody's: one station uses the devices.
            if (station == 1)
                useDevices(stream);
        }
    }

    void useDevices(const ByteStream& stream) {
        for (const std::string asked :
             {"port write 3 1", "i2c write 0 0x50 hex(10C0FFEE)", "blockdev open 180 0",
              "blockdev close 180 0", "serial open 1 115200 0", "serial open 240", "serial close 240",
              "serial open 241", "serial close 241", "audio activate"}) {
            expectExchange(stream, request(asked), answer(asked.substr(0, asked.find(' ')) + " ok"));
            ++m_answered;
        }
    }

    Ordeal& m_ordeal;
    const Clock::time_point m_end;
    std::atomic<std::size_t> m_answered{0};
};

std::vector<Sample> samplesDuring(const Work& work, const Daemon& daemon) {
    std::vector<Sample> samples;
    const auto begin = Clock::now();
    while (!work.isOver()) {
        const std::chrono::duration<double> time = Clock::now() - begin;
        samples.push_back({time.count(), static_cast<double>(residentBytes(daemon.pid())) / kKibi,
                           openDescriptors(daemon.pid()).size(), threadCount(daemon.pid())});
        observeFor(kBetweenSamples);
    }
    return samples;
}

/// A quarter of the time is for what is opened and made once.
void expectNoDrift(Ordeal& ordeal, std::vector<Sample> samples) {
    samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 4));
    ASSERT_GT(samples.size(), 10U) << "too short to tell";
    const double drift = slopeOf(samples) * (samples.back().seconds - samples.front().seconds);
    EXPECT_LE(drift, kMostDriftKibi) << "KiB in " << samples.back().seconds << " s";
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    for (const Sample& sample : samples) {
        descriptors = std::max(descriptors, sample.descriptors);
        threads = std::max(threads, sample.threads);
    }
    // A command has a few descriptors while it runs.
    constexpr std::size_t kOfACommand = 24;
    EXPECT_LE(descriptors, ordeal.bench.descriptors() + kStations + kOfACommand);
    EXPECT_LE(threads, ordeal.bench.threads() + kStations + 1);
    ordeal.note = "resident " + std::to_string(std::lround(samples.front().residentKibi)) + " > " +
                  std::to_string(std::lround(samples.back().residentKibi)) + " KiB, drift " +
                  std::to_string(std::lround(drift)) + " KiB";
}

} // namespace

void endurance(Ordeal& ordeal) {
    static const int s_audioDriver = std::system("deva-nvaudio"); // comes back once the driver is ready
    ASSERT_EQ(s_audioDriver, 0);
    Work work(ordeal, Clock::now() + std::chrono::seconds(ordeal.isLong() ? 1'800 : 15));
    std::vector<Sample> samples;
    runInThreads(kStations + 1, [&](std::size_t number) {
        if (number < kStations)
            work.runStation(number);
        else
            samples = samplesDuring(work, ordeal.bench.daemon());
    });
    ordeal.amount = {work.answered(), kStations - 1, 0};
    closeDevices();
    if (!testing::Test::HasFailure())
        expectNoDrift(ordeal, std::move(samples));
}
