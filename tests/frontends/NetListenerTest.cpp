// What NetListener does without its port.
#include "frontends/NetListener.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <thread>

#include "support/Lines.h"
#include "support/RefusedCalls.h"
#include "support/RunningHandler.h"
#include "support/SocketPair.h"
#include "support/SystemCalls.h"

using ::testing::MatchesRegex;

namespace {

class NetListenerTest : public RunningHandler {};

void* toArgument(int descriptor) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor));
}

} // namespace

TEST_F(NetListenerTest, HasNothingOfItsOwn) {
    EXPECT_EQ(sizeof(NetListener), sizeof(AbstractListener));
}

TEST_F(NetListenerTest, HasNoStationOfItsOwnToTalkTo) {
    NetListener listener;
    std::string text = "text";
    Bytes frame = {1, 2, 3};
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    listener.asyncSend(text);
    listener.asyncSend(frame);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(text, "text");
    EXPECT_EQ(frame, (Bytes{1, 2, 3}));
    EXPECT_EQ(listener.getDeviceListNumber(), 0);
    EXPECT_EQ(listener.getState(), StatedThread::Created);
}

TEST_F(NetListenerTest, EndsWithoutASocket) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto listenWithoutSockets = [] {
        refuseSystemCalls({SYS_socket}, EMFILE);
        NetListener listener;
        listener.threadLoop(&listener);
        listener.waitForDead();
        std::_Exit(0);
    };
    EXPECT_EXIT(listenWithoutSockets(), ::testing::ExitedWithCode(0),
                "Prod\\.testserver: Invalid socket descriptor -1\n"
                "Prod\\.testserver: Stopping NetListener\n");
}

TEST_F(NetListenerTest, EndsWithoutSocketOptions) {
    const System::Descriptor before(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    NetListener listener;
    SystemCalls::failSocketOptions(1);
    ::testing::internal::CaptureStderr();
    listener.threadLoop(&listener);
    EXPECT_THAT(
        ::testing::internal::GetCapturedStderr(),
        MatchesRegex("Prod\\.testserver: Could not set socket options, socket descriptor: [0-9]+\n"
                     "Prod\\.testserver: Stopping NetListener\n"));
    EXPECT_EQ(listener.getState(), StatedThread::Dead);
    const System::Descriptor after(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(after.get(), before.get() + 1) << "the socket is closed";
}

TEST_F(NetListenerTest, AConnectionThreadIsDetachedWithASmallGuardedStack) {
    SocketPair sockets;
    ASSERT_EQ(NetListener::startAnonymousThread(toArgument(sockets.ours.release())), 0);
    const SystemCalls::ThreadMade thread = SystemCalls::lastThread();
    EXPECT_EQ(thread.detachState, PTHREAD_CREATE_DETACHED);
    EXPECT_EQ(thread.guardBytes, 16384u);
    EXPECT_EQ(thread.stackBytes, 262144u);
    expectExchange(sockets, request("scripted"), answer("scripted ok"));
}

TEST_F(NetListenerTest, WithoutAThreadTheConnectionWaitsForOne) {
    SocketPair sockets;
    const int before = SystemCalls::threadAttempts();
    SystemCalls::failThreads(3);
    EXPECT_EQ(NetListener::startAnonymousThread(toArgument(sockets.ours.release())), 0);
    EXPECT_EQ(SystemCalls::threadAttempts(), before + 4);
    expectExchange(sockets, request("scripted"), answer("scripted ok"));
}

TEST_F(NetListenerTest, AConnectionThreadEndsWithItsConnection) {
    SocketPair sockets;
    void* result = &sockets;
    std::thread thread([&] { result = runAnonthread(toArgument(sockets.ours.release())); });
    expectExchange(sockets, request("scripted"), answer("scripted ok"));
    ::shutdown(sockets.descriptor(), SHUT_WR);
    thread.join();
    EXPECT_EQ(result, nullptr);
    EXPECT_TRUE(sockets.closed());
}
