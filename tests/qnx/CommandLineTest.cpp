// A command line that is run like `system` runs it, but with default signal handling.
#include "platform/CommandLine.h"

#include <cerrno>

#include "QnxTest.h"
#include "support/ErrorNumber.h"

namespace {

constexpr int kPid = 4711;

class QnxCommandLineTest : public QnxTest {
protected:
    static FakeSystem::Result ended(int status) {
        return {kPid, 0, {}, [status](void* filled) { *static_cast<int*>(filled) = status; }};
    }
};

} // namespace

TEST_F(QnxCommandLineTest, RunsInAShellWithTheCallersDescriptorsAndDefaultSignals) {
    FakeSystem::next("spawn", {kPid});
    FakeSystem::next("waitpid", ended(0x200));
    EXPECT_EQ(System::runCommandLine("slay it"), 0x200);
    EXPECT_CALLS(
        "spawn \"/bin/sh\" 0 {} flags=0x6 pgroup=0 sigmask=none sigdefault=all "
        "{\"sh\" \"-c\" \"slay it\"} null",
        "waitpid 4711 set 0x0");
}

TEST_F(QnxCommandLineTest, AnInterruptedWaitGoesOn) {
    FakeSystem::next("spawn", {kPid});
    FakeSystem::fail("waitpid", EINTR);
    FakeSystem::next("waitpid", ended(0));
    EXPECT_EQ(System::runCommandLine("slay it"), 0);
}

TEST_F(QnxCommandLineTest, SaysThatItCouldNotBeRun) {
    FakeSystem::fail("spawn", EAGAIN);
    EXPECT_EQ(errorOf(System::runCommandLine("slay it")), EAGAIN);
    FakeSystem::next("spawn", {kPid});
    FakeSystem::fail("waitpid", ECHILD);
    EXPECT_EQ(errorOf(System::runCommandLine("slay it")), ECHILD);
}
