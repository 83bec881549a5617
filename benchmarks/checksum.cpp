#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <numeric>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/CRC.h"
#include "measuring/Benchmark.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "wire/CRCDivision.h"

using namespace Measuring;
namespace CRCDivision = System::CRCDivision;

namespace {

constexpr int kRounds = 11;
constexpr std::size_t kMebi = 1024 * 1024;
constexpr std::size_t kBytes = 127 * kMebi;
const Bound kAtLeastOverTable = Bound::atLeast(4.5);
const Bound kAtLeastOfReading = Bound::atLeast(0.9);

/// The bytes that everything here runs over, and the same as words.
class Memory {
public:
    Memory() : m_words(kBytes / sizeof(std::uint64_t)) {
        std::mt19937_64 random(1);
        for (std::uint64_t& word : m_words)
            word = random();
    }

    const unsigned char* bytes() const { return reinterpret_cast<const unsigned char*>(m_words.data()); }

    /// The sum of all words: the least that has to be done with memory to have read it.
    std::uint64_t wordSum() const {
        // Several sums, so that no addition waits for the one before it.
        constexpr std::size_t kSums = 8;
        static_assert(kBytes % (kSums * sizeof(std::uint64_t)) == 0);
        std::array<std::uint64_t, kSums> sums{};
        for (auto word = m_words.begin(); word != m_words.end(); word += kSums)
            for (std::size_t at = 0; at < kSums; ++at)
                sums[at] += word[static_cast<std::ptrdiff_t>(at)];
        return std::accumulate(sums.begin(), sums.end(), std::uint64_t{0});
    }

private:
    std::vector<std::uint64_t> m_words;
};

/// The checksum as it is defined, one byte after the other.
std::uint32_t tableLoop(const std::uint32_t* table, const unsigned char* bytes) {
    std::uint32_t value = 0;
    for (std::size_t at = 0; at < 4; ++at)
        value = value << 8 | bytes[at];
    value = ~value;
    for (std::size_t at = 4; at < kBytes; ++at)
        value = table[value >> 24] ^ (value << 8 | bytes[at]);
    return ~value;
}

/// Runs something over all the bytes and checks its result, which keeps the compiler from dropping it;
/// yields MiB a second.
template <typename Result>
class Pass {
public:
    Pass(std::function<Result()> run, Result expected) : m_run(std::move(run)), m_expected(expected) {}

    double operator()() const {
        using Clock = std::chrono::steady_clock;
        const Clock::time_point start = Clock::now();
        const Result result = m_run();
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        if (result != m_expected)
            throw std::runtime_error("a result is wrong");
        return static_cast<double>(kBytes) / kMebi / seconds;
    }

private:
    std::function<Result()> m_run;
    Result m_expected;
};

void measure(const Options& options, Report& report) {
    const CorePinning pinning(Cores::One);
    const Memory memory;
    const unsigned char* bytes = memory.bytes();
    std::vector<std::uint32_t> tables(CRCDivision::kTables * CRCDivision::kTableEntries);
    CRCDivision::fillTables(tables.data());
    const std::uint32_t checksum = tableLoop(tables.data(), bytes);

    Contest contest;
    const auto add = [&](std::function<std::uint32_t()> run) {
        return contest.add(Pass<std::uint32_t>(std::move(run), checksum));
    };
    const std::size_t reading =
        contest.add(Pass<std::uint64_t>([&] { return memory.wordSum(); }, memory.wordSum()));
    const std::size_t table = add([&] { return tableLoop(tables.data(), bytes); });
    const std::size_t portable =
        add([&] { return CRCDivision::portable(tables.data(), bytes, kBytes); });
    const std::size_t daemons = add([&] {
        unsigned int crc = 0;
        System::CRC::calc(bytes, static_cast<unsigned int>(kBytes), &crc);
        return crc;
    });
    const bool hasLibrary = CRCDivision::libraryDivide != nullptr;
    const std::size_t library =
        hasLibrary
            ? add([&] { return CRCDivision::checksum(CRCDivision::libraryDivide, bytes, kBytes); })
            : 0;
    contest.run(options.rounds(kRounds));

    const auto row = [&](const std::string& what, std::size_t contender, std::size_t floor,
                         std::optional<Bound> bound = std::nullopt) {
        report.add({what, contest.result(contender), "MiB/s", contest.result(floor),
                    contest.ratio(contender, floor), bound});
    };
    report.add({"reading, a sum over words of 64 bits", contest.result(reading), "MiB/s"});
    report.add({"byte by byte with one table", contest.result(table), "MiB/s"});
    row("portable to byte by byte", portable, table, kAtLeastOverTable);
    row("portable to reading", portable, reading);
    if (hasLibrary)
        row("library to reading", library, reading, kAtLeastOfReading);
    else
        report.note("This program was built without ISA-L.");
    row("what the daemon uses to byte by byte", daemons, table);
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Checksum of 127 MiB, 1 core", measure);
}
