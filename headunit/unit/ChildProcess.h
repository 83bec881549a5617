#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace headunit {

/// Exit statuses as a shell gives them: this one plus the signal for a program that a signal ended.
constexpr int kSignalStatusBase = 128;
constexpr int kCannotExecute = 126;
constexpr int kNotFound = 127;

/// Variables of the environment with their values.
using Environment = std::map<std::string, std::string>;

/// Owns one running child. The child is killed and reaped when its owner goes, and the kernel kills it
/// when this process dies. Start it from the main thread: its life is tied to the thread that did.
class ChildProcess {
public:
    /// Starts `command` (searched in PATH) with no signal blocked, with this process's environment in
    /// which `changes` are made and, when `standardError` is not negative, with that descriptor as its
    /// standard error. Throws UnitError when it cannot be executed.
    explicit ChildProcess(const std::vector<std::string>& command, int standardError = -1,
                          const Environment& changes = {});

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    pid_t pid() const { return m_pid; }

    /// The exit status once the child has ended, else nothing. Does not block.
    std::optional<int> ended();

    /// Blocks until the child has ended.
    int wait();

    /// Kills and reaps the child. No effect when it has ended.
    void kill();

private:
    std::optional<int> reap(int options);

    pid_t m_pid = -1;
    std::optional<int> m_status;
};

/// Replaces this process by `command` (searched in PATH), with no signal blocked and with the changed
/// environment. Comes back only when that fails, with the error number.
int executeInPlace(const std::vector<std::string>& command, const Environment& changes = {});

/// While it lives, processes whose parent ends become children of this one; when it goes, it kills and
/// reaps every child this process still has, so that nothing of a unit outlives it. One per process.
class Descendants {
public:
    Descendants();
    Descendants(const Descendants&) = delete;
    Descendants& operator=(const Descendants&) = delete;
    ~Descendants();
};

} // namespace headunit
