// The front end by itself, on the unit's line, with a command that does what a case says.
#include <future>
#include <string>

#include "core/ProcessResponseAscii.h"
#include "devices/CommHandler.h"
#include "frontends/FlexListener.h"
#include "line/Adapter.h"
#include "support/Lines.h"
#include "support/RunningHandler.h"

namespace {

constexpr int kStationChannel = 3;

class AsciiListenerTest : public RunningHandler {
protected:
    void SetUp() override {
        ASSERT_FALSE(comm()->setInterfaceTyp(kStationChannel, Comm::StreamInterface).failed());
        ASSERT_FALSE(comm()->setInterface(Comm::On).failed());
        // Its thread cannot be waited for: it lives as long as the process, which runs one case.
        auto* listener = new FlexListener(kStationChannel);
        ASSERT_TRUE(listener->start());
        adapter.receiveLine(); // the greeting
    }

    Adapter adapter;
};

TEST_F(AsciiListenerTest, WhatACommandSendsLeavesWhileItStillRuns) {
    std::promise<void> goOn;
    std::string text(100'000, 't');
    command().onTokens = [&](auto&) {
        std::string first = "first";
        command().listener()->asyncSend(first);
        command().listener()->asyncSend(text);
        goOn.get_future().wait();
        return new ProcessResponseAscii(0, "%s", "");
    };
    adapter.send(request("scripted"));
    EXPECT_EQ(adapter.receiveLine(), answer("first"));
    EXPECT_EQ(adapter.receive(3), answer(text).substr(0, 3));
    goOn.set_value();
    const std::string rest = answer(text).substr(3) + answer("scripted ok");
    EXPECT_EQ(adapter.receive(rest.size()), rest);
}

TEST_F(AsciiListenerTest, ACommandDoesNotWaitForAStationThatDoesNotRead) {
    std::string text(100'000, 't');
    std::promise<void> sent;
    command().onTokens = [&](auto&) {
        for (int count = 0; count < 100; ++count)
            command().listener()->asyncSend(text);
        sent.set_value();
        return new ProcessResponseAscii(0, "%s", "");
    };
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
}

} // namespace
