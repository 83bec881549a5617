#include "support/ProcessFigures.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

namespace fs = std::filesystem;

constexpr char kLastThread[] = "standard error\n";

std::string folderOf(pid_t pid) {
    return "/proc/" + std::to_string(pid) + "/";
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error))
        names.push_back(entry.path().filename().string());
    return names;
}

std::string targetOf(pid_t pid, const std::string& descriptor) {
    std::error_code error;
    return fs::read_symlink(folderOf(pid) + "fd/" + descriptor, error).string();
}

/// The number behind "label:", if there is one.
std::optional<long> field(const std::string& file, const std::string& label, int base = 10) {
    const std::string content = contentOf(file);
    const std::size_t at = content.find(label + ":");
    if (at == std::string::npos)
        return std::nullopt;
    return std::stol(content.substr(at + label.size() + 1), nullptr, base);
}

/// The columns of "stat" behind the program's name,
/// which may itself hold blanks; the first is the state.
std::vector<std::string> statusColumns(pid_t pid) {
    const std::string content = contentOf(folderOf(pid) + "stat");
    const std::size_t end = content.rfind(')');
    if (end == std::string::npos)
        return {};
    std::istringstream columns(content.substr(end + 1));
    return {std::istream_iterator<std::string>(columns), {}};
}

} // namespace

std::vector<int> openDescriptors(pid_t pid) {
    std::vector<int> numbers;
    for (const std::string& name : namesIn(folderOf(pid) + "fd"))
        numbers.push_back(std::stoi(name));
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

std::vector<std::string> inheritableDescriptors(pid_t pid) {
    constexpr long kCloseOnExec = 02000000;
    std::vector<std::string> found;
    for (const int descriptor : openDescriptors(pid)) {
        const std::string number = std::to_string(descriptor);
        const std::string information = folderOf(pid) + "fdinfo/" + number;
        // One that was closed since it was listed has no flags, whatever its number stands for next.
        const long flags = field(information, "flags", 8).value_or(kCloseOnExec);
        if (descriptor <= STDERR_FILENO || (flags & kCloseOnExec) != 0)
            continue;
        found.push_back(number + " -> " + targetOf(pid, number));
    }
    return found;
}

std::size_t threadCount(pid_t pid) {
    return namesIn(folderOf(pid) + "task").size();
}

std::size_t settledThreadCount(pid_t pid) {
    const std::string folder = folderOf(pid) + "task/";
    const bool isSettled = eventually([&] {
        const std::vector<std::string> threads = namesIn(folder);
        return std::any_of(threads.begin(), threads.end(), [&](const std::string& thread) {
            return contentOf(folder + thread + "/comm") == kLastThread;
        });
    });
    if (!isSettled)
        throw std::runtime_error("the daemon has not started all of its threads");
    return threadCount(pid);
}

std::size_t residentBytes(pid_t pid) {
    return static_cast<std::size_t>(field(folderOf(pid) + "status", "VmRSS").value_or(0)) * 1024;
}

std::size_t addressSpaceBytes(pid_t pid) {
    return static_cast<std::size_t>(field(folderOf(pid) + "status", "VmSize").value_or(0)) * 1024;
}

std::chrono::milliseconds processorTime(pid_t pid) {
    constexpr std::size_t kUserTime = 11;
    constexpr std::size_t kSystemTime = 12;
    const auto columns = statusColumns(pid);
    if (columns.size() <= kSystemTime)
        return {};
    const long ticks = std::stol(columns[kUserTime]) + std::stol(columns[kSystemTime]);
    return std::chrono::milliseconds(ticks * 1000 / ::sysconf(_SC_CLK_TCK));
}

long wakeUps(pid_t pid) {
    long sum = 0;
    for (const std::string& thread : namesIn(folderOf(pid) + "task"))
        sum +=
            field(folderOf(pid) + "task/" + thread + "/status", "voluntary_ctxt_switches").value_or(0);
    return sum;
}

std::vector<pid_t> childrenOf(pid_t pid) {
    std::vector<pid_t> children;
    for (const std::string& name : namesIn("/proc")) {
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const auto columns = statusColumns(std::stoi(name));
        if (columns.size() > 1 && columns[1] == std::to_string(pid))
            children.push_back(std::stoi(name));
    }
    return children;
}

bool isRunning(pid_t pid) {
    const auto columns = statusColumns(pid);
    return !columns.empty() && columns.front() != "Z" && columns.front() != "X";
}
