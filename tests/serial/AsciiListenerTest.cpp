// The front end by itself, on the unit's line, with a command that does what a case says.
#include <poll.h>

#include <atomic>
#include <future>
#include <string>
#include <utility>

#include "core/ProcessResponseAscii.h"
#include "devices/CommHandler.h"
#include "frontends/FlexListener.h"
#include "line/Adapter.h"
#include "support/Lines.h"
#include "support/RunningHandler.h"

namespace {

constexpr int kStationChannel = 3;

#ifdef __SANITIZE_THREAD__
constexpr bool kThreadSanitized = true;
#else
constexpr bool kThreadSanitized = false;
#endif

/// So many of the driver's next waits without limit end with an event that nobody waits for.
std::atomic<int> s_waitsForNothing{0};

class AsciiListenerTest : public RunningHandler {
protected:
    void SetUp() override {
        if (kThreadSanitized)
            GTEST_SKIP() << "its thread uses what the end of the process destroys";
        ASSERT_FALSE(comm()->setInterfaceTyp(kStationChannel, Comm::StreamInterface).failed());
        ASSERT_FALSE(comm()->setInterface(Comm::On).failed());
        // Its thread cannot be waited for: it lives as long as the process, which runs one case.
        auto* listener = new FlexListener(kStationChannel);
        ASSERT_TRUE(listener->start());
        adapter.receiveLine(); // the greeting
    }

    /// What the command does from now on. Set where it runs.
    void onTokens(decltype(ScriptedCommand::onTokens) action) {
        Handler::getInstance()->runExclusively([&] { command().onTokens = std::move(action); });
    }

    Adapter adapter;
};

TEST_F(AsciiListenerTest, WhatACommandSendsLeavesWhileItStillRuns) {
    std::promise<void> goOn;
    std::string text(100'000, 't');
    onTokens([&](auto&) {
        std::string first = "first";
        command().listener()->asyncSend(first);
        command().listener()->asyncSend(text);
        goOn.get_future().wait();
        return new ProcessResponseAscii(0, "%s", "");
    });
    adapter.send(request("scripted"));
    EXPECT_EQ(adapter.receiveLine(), answer("first"));
    EXPECT_EQ(adapter.receive(3), answer(text).substr(0, 3));
    goOn.set_value();
    const std::string rest = answer(text).substr(3) + answer("scripted ok");
    EXPECT_EQ(adapter.receive(rest.size()), rest);
    onTokens({}); // it uses what ends here
}

TEST_F(AsciiListenerTest, ACommandDoesNotWaitForAStationThatDoesNotRead) {
    std::string text(100'000, 't');
    std::promise<void> sent;
    onTokens([&](auto&) {
        for (int count = 0; count < 100; ++count)
            command().listener()->asyncSend(text);
        sent.set_value();
        return new ProcessResponseAscii(0, "%s", "");
    });
    adapter.send(request("scripted"));
    ASSERT_EQ(sent.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    // Lines that were too much have been left out as a whole.
    std::string line = adapter.receiveLine();
    int lines = 0;
    for (; line == answer(text); line = adapter.receiveLine())
        ++lines;
    EXPECT_GE(lines, 3);
    EXPECT_LT(lines, 100);
    EXPECT_EQ(line, answer("scripted ok"));
    onTokens({}); // it uses what ends here
}

TEST_F(AsciiListenerTest, AWaitThatEndsWithNothingToReadIsALineThatHasGone) {
    int waits = 1;
    onTokens([&waits](auto&) {
        s_waitsForNothing = std::exchange(waits, 0); // nobody waits for the line meanwhile
        return new ProcessResponseAscii(0, "%s", "");
    });
    adapter.send(request("scripted"));
    EXPECT_EQ(adapter.receiveLine(), answer("scripted ok"));
    const std::string greeting = adapter.receiveLine();
    EXPECT_EQ(greeting.rfind("\x02#Info Production Test Server", 0), 0U) << greeting;
    adapter.send(request("scripted"));
    EXPECT_EQ(adapter.receiveLine(), answer("scripted ok"));
    onTokens({}); // it uses what ends here
}

} // namespace

extern "C" {

int __real_poll(pollfd*, nfds_t, int);
int __wrap_poll(pollfd* events, nfds_t count, int limit) {
    const bool isOfTheDriver = count == 2 && limit < 0 && events[0].events == POLLIN;
    if (!isOfTheDriver || s_waitsForNothing == 0)
        return __real_poll(events, count, limit);
    --s_waitsForNothing;
    events[0].revents = POLLPRI;
    events[1].revents = 0;
    return 1;
}

} // extern "C"
