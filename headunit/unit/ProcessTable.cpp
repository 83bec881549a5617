#include "unit/ProcessTable.h"

#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace headunit {
namespace {

constexpr std::size_t kKeptOfName = 15;
constexpr std::string_view kEndedStates = "ZXx";
constexpr std::string_view kPrefix = "SIG";

std::optional<int> wholeNumber(std::string_view text) {
    int number = 0;
    const auto [stopped, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || stopped != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace

std::optional<ProcessLine> parseProcessLine(std::string_view line) {
    // A name may hold blanks and brackets of its own: it ends at the last one.
    const std::size_t open = line.find('(');
    const std::size_t close = line.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open ||
        line.size() < close + 3)
        return std::nullopt;
    return ProcessLine{std::string(line.substr(open + 1, close - open - 1)),
                       kEndedStates.find(line[close + 2]) != std::string_view::npos};
}

std::vector<pid_t> processesNamed(std::string_view name) {
    const std::string_view kept = name.substr(0, kKeptOfName);
    std::vector<pid_t> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const auto process = wholeNumber(entry.path().filename().string());
        if (!process || *process == ::getpid())
            continue;
        std::ifstream file(entry.path() / "stat");
        std::string line;
        std::getline(file, line);
        const auto parsed = parseProcessLine(line);
        if (parsed && !parsed->ended && parsed->name == kept)
            found.push_back(*process);
    }
    return found;
}

std::optional<int> signalNumber(std::string_view text) {
    if (const auto number = wholeNumber(text); number && *number >= 0 && *number < NSIG)
        return number;
    if (text.substr(0, kPrefix.size()) == kPrefix)
        text.remove_prefix(kPrefix.size());
    for (int signal = 1; signal < NSIG; ++signal) {
        const char* name = ::sigabbrev_np(signal);
        if (name != nullptr && text == name)
            return signal;
    }
    return std::nullopt;
}

} // namespace headunit
