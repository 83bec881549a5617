#include "platform/linux/ProcessTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "platform/Descriptor.h"
#include "platform/posix/EndedChildren.h"

namespace System {

namespace {

// Killing is repeated because a process may start another between the look and the blow. A process that
// the kernel cannot end (stuck in a driver) must not hold up the caller.
constexpr int kKillRounds = 1000;
constexpr int kPauseBetweenRoundsMs = 1;

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
    unsigned long long startTime = 0;
    if (afterName == nullptr ||
        std::sscanf(afterName + 1,
                    " %c %d %d %d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %*d %*d %llu",
                    &state, &process.parent, &process.group, &process.session, &startTime) != 5)
        return false;
    process.pid = static_cast<pid_t>(std::atoi(pid));
    process.startTime = startTime;
    process.dead = state == 'Z' || state == 'X';
    return true;
}

const Process* find(const std::vector<Process>& processes, pid_t pid) {
    const auto found = std::find_if(processes.begin(), processes.end(),
                                    [pid](const Process& process) { return process.pid == pid; });
    return found == processes.end() ? nullptr : &*found;
}

/// The ancestor of `process` (or itself) whose parent is `ancestor`; null when it is no descendant.
const Process* branchBelow(pid_t ancestor, const Process& process, const std::vector<Process>& all) {
    const Process* current = &process;
    // Bounded: numbers that were reused while the table was read could form a ring.
    for (std::size_t steps = 0; current != nullptr && steps <= all.size(); ++steps) {
        if (current->parent == ancestor)
            return current;
        current = find(all, current->parent);
    }
    return nullptr;
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

ProcessTree::ProcessTree() {
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    collectEndedChildren();
    // Without a child there is nothing left of earlier commands: the usual case costs two system calls.
    siginfo_t info;
    if (::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0)
        return;
    const std::vector<Process> all = listProcesses();
    std::copy_if(all.begin(), all.end(), std::back_inserter(m_earlier), [&all](const Process& process) {
        return branchBelow(::getpid(), process, all) != nullptr;
    });
}

bool ProcessTree::belongsToEarlier(const Process& process) const {
    return std::any_of(m_earlier.begin(), m_earlier.end(), [&process](const Process& earlier) {
        return earlier.session == process.session ||
               (earlier.pid == process.pid && earlier.startTime == process.startTime);
    });
}

std::vector<Process> ProcessTree::membersOf(pid_t root) const {
    const std::vector<Process> all = listProcesses();
    std::vector<Process> members;
    for (const Process& process : all) {
        if (process.dead || process.pid == ::getpid())
            continue;
        const Process* branch = branchBelow(::getpid(), process, all);
        const bool descends = branch != nullptr && (branch->pid == root || !belongsToEarlier(*branch));
        if (process.session == root || process.group == root || descends)
            members.push_back(process);
    }
    return members;
}

int ProcessTree::kill(pid_t root) const {
    // The group first, in one blow; the root by its own number, in case it left its group.
    ::kill(-root, SIGKILL);
    if (::kill(root, SIGKILL) != 0)
        return errno;
    for (int round = 0; round < kKillRounds; ++round) {
        const std::vector<Process> members = membersOf(root);
        if (members.empty())
            break;
        for (const Process& member : members)
            ::kill(member.pid, SIGKILL);
        ::poll(nullptr, 0, kPauseBetweenRoundsMs);
    }
    return 0;
}

} // namespace System
