#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace Measuring {

/// Owns one child process and kills it, and waits for it, at the end. The child also dies with its
/// parent. Move-only. The parent must have one thread when it starts a child.
class ChildProcess {
public:
    /// A copy of this process that runs the body and ends.
    static ChildProcess running(const std::function<void()>& body);

    /// The program, without arguments, its standard streams on /dev/null.
    static ChildProcess program(const std::string& path);

    /// The program `words[0]` with the other words as its arguments, its standard streams on /dev/null.
    static ChildProcess command(const std::vector<std::string>& words);

    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    ~ChildProcess();

    pid_t pid() const { return m_pid; }

    /// Whether it has not ended yet.
    bool isAlive() const;

    /// Waits for its end. The exit status, or 128 plus the signal that ended it.
    int waitForEnd();

private:
    explicit ChildProcess(pid_t pid) : m_pid(pid) {}

    pid_t m_pid;
};

} // namespace Measuring
