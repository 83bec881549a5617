#include "measuring/MemoryUse.h"

#include <chrono>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>

namespace Measuring {

namespace {

constexpr std::chrono::milliseconds kSettlePause(20);
constexpr int kSettledSamples = 10;
constexpr int kMaximumSamples = 500;

// Files of lines "Name:   number ...".
std::map<std::string, double> numbersIn(pid_t pid, const std::string& file) {
    const std::string path = "/proc/" + std::to_string(pid) + "/" + file;
    std::ifstream stream(path);
    if (!stream)
        throw std::runtime_error("cannot read " + path);
    std::map<std::string, double> numbers;
    std::string line;
    while (std::getline(stream, line)) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos)
            continue;
        try {
            numbers[line.substr(0, colon)] = std::stod(line.substr(colon + 1));
        } catch (const std::invalid_argument&) {
            continue;
        }
    }
    return numbers;
}

} // namespace

MemoryUse memoryUseOf(pid_t pid) {
    auto status = numbersIn(pid, "status");
    auto pages = numbersIn(pid, "smaps_rollup");
    MemoryUse use{};
    use.resident = pages["Rss"];
    use.residentPeak = status["VmHWM"];
    use.proportional = pages["Pss"];
    use.exclusive = pages["Private_Clean"] + pages["Private_Dirty"];
    return use;
}

int threadsOf(pid_t pid) {
    return static_cast<int>(numbersIn(pid, "status")["Threads"]);
}

MemoryUse settledMemoryUseOf(pid_t pid) {
    MemoryUse last = memoryUseOf(pid);
    int equal = 0;
    for (int sample = 0; sample < kMaximumSamples; ++sample) {
        std::this_thread::sleep_for(kSettlePause);
        const MemoryUse now = memoryUseOf(pid);
        equal = now.resident == last.resident ? equal + 1 : 0;
        if (equal == kSettledSamples)
            return now;
        last = now;
    }
    throw std::runtime_error("the daemon's memory does not come to rest");
}

} // namespace Measuring
