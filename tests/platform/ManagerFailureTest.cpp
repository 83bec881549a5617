// Managers that answer badly, late or not at all, that go, and that come back.
#include <fcntl.h>

#include "manager/KernelCalls.h"
#include "manager/ManagerFixture.h"

using ::testing::SizeIs;

namespace {

// What a request polls for.
const KernelCalls::Step kLookWhetherItHasGone = KernelCalls::passing();
const KernelCalls::Step kTimeIsOver = KernelCalls::returning(0);

class ManagerFailureTest : public ManagerFixture {
protected:
    /// The first request: the manager hears it and says nothing until the time is over.
    void expectNoAnswer(KernelCalls& calls) {
        calls.script("poll", {kLookWhetherItHasGone, kTimeIsOver});
        m_manager->willSayNothing();
        EXPECT_EQ(request(), ETIMEDOUT);
        EXPECT_TRUE(m_manager->hasHeard(1));
    }
};

} // namespace

TEST_F(ManagerFailureTest, AnAnswerWithoutAWholeResultIsAFailure) {
    open();
    for (const std::size_t size : {1U, 2U, 3U}) {
        SCOPED_TRACE(size);
        unsigned char byte = kGuard;
        m_manager->willSend(Bytes(size, 0));
        EXPECT_EQ(System::requestDevice(m_device.get(), kBack, {}, {{&byte, 1}}), EPROTO);
        EXPECT_EQ(byte, kGuard);
        expectWorking();
    }
    m_manager->willSend({});
    EXPECT_NE(request(), 0);
    expectWorking();
}

TEST_F(ManagerFailureTest, AManagerThatGoesDuringARequestIsAnErrorAndMayComeBack) {
    open();
    for (int time = 0; time < 3; ++time) {
        unsigned char byte = kGuard;
        m_manager->willVanish();
        EXPECT_EQ(System::requestDevice(m_device.get(), kBack, {}, {{&byte, 1}}), EPIPE);
        EXPECT_EQ(byte, kGuard);
        EXPECT_EQ(request(), ENOENT) << "there is nobody";
        EXPECT_EQ(request(), ENOENT) << "there is still nobody";
        comeBack();
        expectWorking();
        EXPECT_EQ(m_manager->connections(), 1);
    }
}

TEST_F(ManagerFailureTest, AManagerThatGoesBetweenRequestsAndComesBackIsNotMissed) {
    open();
    expectWorking();
    comeBack();
    expectWorking();
    m_manager->hangUp();
    expectWorking();
    EXPECT_EQ(m_manager->connections(), 2);
    m_manager.reset();
    EXPECT_EQ(request(), ENOENT);
    comeBack();
    expectWorking();
}

TEST_F(ManagerFailureTest, AManagerThatGoesBeforeTheFirstRequestIsReachedLater) {
    open();
    m_manager.reset();
    EXPECT_EQ(request(), ENOENT);
    comeBack();
    expectWorking();
}

TEST_F(ManagerFailureTest, AManagerThatEndsTheConnectionIsConnectedToAnew) {
    open();
    m_manager->willHangUp();
    EXPECT_EQ(request(), EPIPE);
    expectWorking();
    EXPECT_EQ(m_manager->connections(), 2);
}

TEST_F(ManagerFailureTest, ANewConnectionTakesThePlaceOfTheOldOne) {
    open();
    expectWorking();
    const int number = m_device.get();
    const std::size_t before = openDescriptors();
    for (int time = 0; time < 3; ++time) {
        m_manager->willHangUp();
        EXPECT_EQ(request(), EPIPE);
        expectWorking();
    }
    EXPECT_EQ(m_device.get(), number);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_NE(::fcntl(number, F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_NE(::fcntl(number, F_GETFL) & O_NONBLOCK, 0);
    m_device.reset();
    EXPECT_TRUE(m_manager->isLeftAlone());
}

TEST_F(ManagerFailureTest, AManagerIsFoundAgainByThePathThatWasOpened) {
    comeBackAs("own");
    open();
    expectWorking();
    m_manager->willHangUp();
    EXPECT_EQ(request(), EPIPE);
    expectWorking();
    comeBackAs("another");
    expectWorking();
}

TEST_F(ManagerFailureTest, AManagerThatDoesNotAnswerIsGivenUp) {
    open();
    KernelCalls calls;
    expectNoAnswer(calls);
    ASSERT_THAT(calls.pollLimits(), SizeIs(2));
    EXPECT_EQ(calls.pollLimits()[0], 0);
    EXPECT_GT(calls.pollLimits()[1], 5000);
    EXPECT_LE(calls.pollLimits()[1], 10000);
    EXPECT_TRUE(m_manager->isLeftAlone());
    expectWorking();
    EXPECT_EQ(m_manager->connections(), 2);
}

TEST_F(ManagerFailureTest, ALateAnswerIsNotTakenForThatOfTheNextRequest) {
    open();
    KernelCalls calls;
    expectNoAnswer(calls);
    m_manager->say(littleEndian({5}));
    expectWorking();
}

TEST_F(ManagerFailureTest, WhatTheManagerSaysUnaskedIsNotTakenForAnAnswer) {
    open();
    expectWorking();
    m_manager->say(littleEndian({5}));
    expectWorking();
}

TEST_F(ManagerFailureTest, InterruptionsAndEarlyWakingAreNotFailures) {
    open();
    KernelCalls calls;
    const auto interrupted = KernelCalls::failing(EINTR);
    calls.script("poll", {kLookWhetherItHasGone, interrupted, interrupted});
    for (const int error : {EINTR, EAGAIN, EINTR, EAGAIN}) {
        calls.failNext("send", error);
        calls.failNext("recv", error);
    }
    expectWorking();
    EXPECT_THAT(m_manager->requests(), SizeIs(1));
    EXPECT_EQ(m_manager->connections(), 1);
}

TEST_F(ManagerFailureTest, AFailingSystemCallIsTheResult) {
    open();
    KernelCalls calls;
    calls.failNext("send", ENOBUFS);
    EXPECT_EQ(request(), ENOBUFS);
    expectWorking();
    calls.failNext("recv", ENOMEM);
    m_manager->willAnswer(0);
    EXPECT_EQ(request(), ENOMEM);
    expectWorking();
    calls.script("poll", {kLookWhetherItHasGone, KernelCalls::failing(ENOMEM)});
    m_manager->willSayNothing();
    const std::size_t before = m_manager->requests().size();
    EXPECT_EQ(request(), ENOMEM);
    EXPECT_TRUE(m_manager->hasHeard(before + 1));
    expectWorking();
    calls.failNext("send", EAGAIN);
    calls.script("poll", {kLookWhetherItHasGone, kTimeIsOver});
    EXPECT_EQ(request(), ETIMEDOUT) << "it takes no request";
    expectWorking();
}
