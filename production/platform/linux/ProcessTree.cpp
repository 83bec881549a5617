#include "platform/linux/ProcessTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

#include "wire/Descriptor.h"

namespace System {

namespace {

// Killing is repeated because a process may start another between the look and the blow. A process that
// the kernel cannot end (stuck in a driver) must not hold up the caller.
constexpr int kKillRounds = 1000;
constexpr std::chrono::milliseconds kPauseBetweenRounds{1};

bool readStatus(const char* pid, Process& process) {
    const Descriptor file(::open(("/proc/" + std::string(pid) + "/stat").c_str(), O_RDONLY | O_CLOEXEC));
    char text[1024];
    const ssize_t length = file ? ::read(file.get(), text, sizeof text - 1) : -1;
    if (length <= 0)
        return false;
    text[length] = '\0';
    // The program's name stands in parentheses and may itself hold any character.
    const char* afterName = std::strrchr(text, ')');
    char state = 0;
    if (afterName == nullptr || std::sscanf(afterName + 1, " %c %d %d %d", &state, &process.parent,
                                            &process.group, &process.session) != 4)
        return false;
    process.pid = static_cast<pid_t>(std::atoi(pid));
    process.dead = state == 'Z' || state == 'X';
    return true;
}

/// What descends from `root` or never left its session and group, without `root` itself.
std::vector<Process> offspringOf(pid_t root) {
    std::vector<Process> others = listProcesses();
    std::vector<Process> offspring;
    std::vector<pid_t> family = {root};
    const auto belongs = [&](const Process& process) {
        return process.pid != root &&
               (process.session == root || process.group == root ||
                std::find(family.begin(), family.end(), process.parent) != family.end());
    };
    for (std::size_t known = 0; known != family.size();) {
        known = family.size();
        const auto rest = std::partition(others.begin(), others.end(), belongs);
        std::for_each(others.begin(), rest, [&](const Process& process) {
            offspring.push_back(process);
            family.push_back(process.pid);
        });
        others.erase(others.begin(), rest);
    }
    return offspring;
}

/// Whether there was anything left to kill. All are stopped before the first one goes: a script whose
/// command was killed would tell so in its output and go on.
bool killOffspring(pid_t root) {
    bool found = false;
    const std::vector<Process> offspring = offspringOf(root);
    for (const int signal : {SIGSTOP, SIGKILL}) {
        for (const Process& process : offspring) {
            if (process.dead)
                continue;
            found = true;
            ::kill(process.pid, signal);
        }
    }
    return found;
}

} // namespace

std::vector<Process> listProcesses() {
    std::vector<Process> processes;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir("/proc"), ::closedir);
    if (!folder)
        return processes;
    while (const dirent* entry = ::readdir(folder.get())) {
        Process process;
        if (entry->d_name[0] >= '1' && entry->d_name[0] <= '9' && readStatus(entry->d_name, process))
            processes.push_back(process);
    }
    return processes;
}

int killProcessTree(pid_t root) {
    for (int round = 0; round < kKillRounds && killOffspring(root); ++round)
        std::this_thread::sleep_for(kPauseBetweenRounds);
    // The group in one blow, for where there is no table of processes; the root by its own number, in
    // case it left its group.
    ::kill(-root, SIGKILL);
    return ::kill(root, SIGKILL) == 0 ? 0 : errno;
}

} // namespace System
