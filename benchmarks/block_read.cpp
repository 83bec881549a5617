#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/Connection.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "measuring/Daemon.h"
#include "measuring/Failure.h"
#include "wire/Descriptor.h"

using namespace Measuring;

namespace {

constexpr int kRounds = 21;
constexpr std::size_t kMebi = 1024 * 1024;
constexpr int kMebiBytes = 100;
constexpr std::size_t kBytes = kMebiBytes * kMebi;
constexpr char kImage[] = "/dev/umass/umass0";
constexpr char kMedium[] = "179 0";
const Bound kAtMostOverBare = Bound::atMost(1 / 0.9);

/// Puts a medium into the unit that holds the bytes and the block behind them, which is out of reach;
/// having been written, it is in the page cache. Returns its block size.
std::size_t prepareImage() {
    const System::Descriptor image(::open(kImage, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    struct stat status {};
    if (!image || ::fstat(image.get(), &status) != 0)
        throw failure(std::string("cannot make ") + kImage);
    const auto blockSize = static_cast<std::size_t>(status.st_blksize);
    const std::vector<char> piece(kMebi, 'x');
    for (std::size_t done = 0; done < kBytes + blockSize; done += piece.size())
        if (::write(image.get(), piece.data(), piece.size()) != static_cast<ssize_t>(piece.size()))
            throw failure(std::string("cannot fill ") + kImage);
    return blockSize;
}

template <typename Run>
double milliseconds(const Run& run) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    run();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// The same bytes with one call into memory of the kind that the scratch buffer is.
class BareRead {
public:
    BareRead()
        : m_image(::open(kImage, O_RDONLY | O_CLOEXEC)),
          m_memory(static_cast<char*>(std::calloc(kBytes, 1)), std::free) {
        if (!m_image || !m_memory)
            throw failure("cannot read without the daemon");
    }

    void operator()() const {
        if (::lseek(m_image.get(), 0, SEEK_SET) != 0 ||
            ::read(m_image.get(), m_memory.get(), kBytes) != static_cast<ssize_t>(kBytes))
            throw failure("a bare read does not read all");
    }

private:
    System::Descriptor m_image;
    std::unique_ptr<char, void (*)(void*)> m_memory;
};

void measure(Cores cores, const Options& options, Report& report) {
    const std::size_t blockSize = prepareImage();
    const CorePinning pinning(cores);
    const Daemon daemon(options.daemon);
    Connection connection(Daemon::kPort);
    if (connection.exchange(framed(std::string("blockdev open ") + kMedium)).find(" ok") ==
        std::string_view::npos)
        throw std::runtime_error("the daemon does not open the medium");
    const std::string request = framed(std::string("blockdev read ") + kMedium + " 0 " +
                                       std::to_string(kBytes / blockSize) + " 0");
    const auto daemonRead = [&] {
        // The number of bytes: 0x06400000.
        if (connection.exchange(request).find("base64(BkAAAA==)") == std::string_view::npos)
            throw std::runtime_error("the daemon does not read all");
    };
    const BareRead bareRead;

    Contest contest;
    const std::size_t bare = contest.add([&] { return milliseconds(bareRead); });
    const std::size_t throughDaemon = contest.add([&] { return milliseconds(daemonRead); });
    contest.run(options.rounds(kRounds));

    Row judged{std::string("100 MiB from the page cache, ") + nameOf(cores),
               contest.result(throughDaemon), "ms", contest.result(bare),
               contest.ratio(throughDaemon, bare)};
    if (cores == Cores::One)
        judged.bound = kAtMostOverBare;
    report.add(judged);
    report.add({"  bare to daemon", contest.ratio(bare, throughDaemon), "times"});
    report.add({"  through the daemon", kMebiBytes / contest.result(throughDaemon) * 1000, "MiB/s"});
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Block read into the scratch buffer",
                        [](const Options& options, Report& report) {
                            measure(Cores::One, options, report);
                            measure(Cores::All, options, report);
                        });
}
