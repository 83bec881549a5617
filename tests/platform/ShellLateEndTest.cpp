#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <utility>

#include "platform/Shell.h"
#include "support/ErrorNumber.h"
#include "support/Pipe.h"
#include "support/ShellFixture.h"
#include "support/Waiting.h"

using System::ShellOutcome;
using namespace std::chrono_literals;

namespace {

/// Another process that traces one: the kernel withholds its end from its parent until it lets go.
class Tracer {
public:
    explicit Tracer(pid_t traced) : m_pid(::fork()) {
        if (m_pid == 0)
            trace(traced);
        m_attached.writeEnd.reset();
        m_letGo.readEnd.reset();
        char byte = 0;
        m_isAttached = ::read(m_attached.readEnd.get(), &byte, 1) == 1;
    }
    ~Tracer() {
        letGo();
        ::waitpid(m_pid, nullptr, 0);
    }
    Tracer(const Tracer&) = delete;
    Tracer& operator=(const Tracer&) = delete;

    bool isAttached() const { return m_isAttached; }
    void letGo() { m_letGo.writeEnd.reset(); }

private:
    [[noreturn]] void trace(pid_t traced) {
        m_letGo.writeEnd.reset();
        char byte = 0;
        if (::ptrace(PTRACE_SEIZE, traced, nullptr, nullptr) == 0 &&
            ::write(m_attached.writeEnd.get(), &byte, 1) == 1) [[maybe_unused]]
            const ssize_t end = ::read(m_letGo.readEnd.get(), &byte, 1);
        ::_exit(0);
    }

    Pipe m_attached;
    Pipe m_letGo;
    pid_t m_pid;
    bool m_isAttached = false;
};

class ShellLateEndTest : public ShellFixture {
protected:
    /// What can be learned of the shell's end.
    int endOf(pid_t pid) const {
        siginfo_t info{};
        return errorOf(::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT));
    }
};

} // namespace

TEST_F(ShellLateEndTest, IsCollectedThenAndNotOnlyByTheNextShell) {
    Pipe input;
    System::Shell shell;
    ASSERT_EQ(shell.start(input.readEnd.get(), STDOUT_FILENO, STDERR_FILENO), 0);
    Tracer tracer(shell.pid());
    ASSERT_TRUE(tracer.isAttached());
    EXPECT_EQ(shell.feedAndWait(std::move(input.writeEnd), "sleep 1000\n", 50ms).outcome,
              ShellOutcome::Killed);
    EXPECT_EQ(endOf(shell.pid()), 0) << "collected before its end";
    tracer.letGo();
    EXPECT_TRUE(eventually([&] { return endOf(shell.pid()) == ECHILD; }));
}
