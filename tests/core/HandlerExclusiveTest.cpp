// A front end's own use of a command: it takes its turn with the requests.
#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/RunningHandler.h"
#include "support/SleepingThread.h"
#include "support/Waiting.h"

using ::testing::ElementsAre;

namespace {

class HandlerExclusiveTest : public RunningHandler {
protected:
    /// Lets the command wait until `release`, and notes when it runs.
    void holdUpCommand() {
        command().onTokens = [this](Tokens& list) {
            note(list.size() > 1 ? list[1].data() : "command");
            m_isHeld = true;
            while (!m_isReleased)
                std::this_thread::yield();
            return new ProcessResponse(ProcessResponse::kSuccess);
        };
    }

    bool isHeldUp() {
        return eventually([this] { return m_isHeld.load(); });
    }

    void release() { m_isReleased = true; }

    void note(const std::string& what) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_notes.push_back(what);
    }

    std::vector<std::string> notes() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_notes;
    }

private:
    std::atomic<bool> m_isHeld{false};
    std::atomic<bool> m_isReleased{false};
    std::mutex m_mutex;
    std::vector<std::string> m_notes;
};

} // namespace

TEST_F(HandlerExclusiveTest, ItRunsOnTheDispatcherAndIsWaitedFor) {
    std::thread::id commands;
    command().willRun([&] { commands = std::this_thread::get_id(); });
    send({"scripted"});
    std::thread::id own;
    handler().runExclusively([&] { own = std::this_thread::get_id(); });
    EXPECT_EQ(own, commands);
    EXPECT_NE(own, std::this_thread::get_id());
}

TEST_F(HandlerExclusiveTest, ItRunsOnce) {
    int runs = 0;
    handler().runExclusively([&] { ++runs; });
    EXPECT_EQ(runs, 1);
    handler().runExclusively([&] { ++runs; });
    EXPECT_EQ(runs, 2);
}

TEST_F(HandlerExclusiveTest, WhatItThrowsComesOutAtTheCaller) {
    EXPECT_THAT([] { handler().runExclusively([] { throw std::runtime_error("of its own"); }); },
                ::testing::ThrowsMessage<std::runtime_error>("of its own"));
    EXPECT_THROW(handler().runExclusively([] { throw 42; }), int);
}

TEST_F(HandlerExclusiveTest, TheDispatcherGoesOnAfterAnException) {
    EXPECT_THROW(handler().runExclusively([] { throw std::out_of_range("x"); }), std::out_of_range);
    EXPECT_EQ(send({"scripted"}), "scripted ok");
    bool ran = false;
    handler().runExclusively([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST_F(HandlerExclusiveTest, NoCommandRunsMeanwhile) {
    std::atomic<bool> runs{false};
    std::atomic<bool> mayEnd{false};
    std::thread exclusive([&] {
        handler().runExclusively([&] {
            runs = true;
            while (!mayEnd)
                std::this_thread::yield();
            note("exclusive");
        });
    });
    ASSERT_TRUE(eventually([&] { return runs.load(); }));
    command().willRun([&] { note("command"); });
    std::thread station([&] { EXPECT_EQ(send({"scripted"}), "scripted ok"); });
    EXPECT_FALSE(eventually([&] { return !notes().empty(); }, std::chrono::milliseconds(20)));
    mayEnd = true;
    exclusive.join();
    station.join();
    EXPECT_THAT(notes(), ElementsAre("exclusive", "command"));
}

TEST_F(HandlerExclusiveTest, ItWaitsForTheCommandThatRuns) {
    holdUpCommand();
    std::thread station([&] { handler().handleCommand(tokens({"scripted", "command"}), &m_listener); });
    ASSERT_TRUE(isHeldUp());
    std::thread exclusive([&] { handler().runExclusively([&] { note("exclusive"); }); });
    EXPECT_FALSE(eventually([&] { return notes().size() > 1; }, std::chrono::milliseconds(20)));
    release();
    station.join();
    exclusive.join();
    EXPECT_THAT(notes(), ElementsAre("command", "exclusive"));
}

TEST_F(HandlerExclusiveTest, ItKeepsItsPlaceAmongTheRequests) {
    holdUpCommand();
    const auto request = [](const char* name) {
        RecordingListener listener;
        EXPECT_EQ(handler().handleCommand(tokens({"scripted", name}), &listener), "scripted ok");
    };
    const std::vector<std::function<void()>> callers = {
        [&] { request("first"); },
        [&] { handler().runExclusively([&] { note("second"); }); },
        [&] { request("third"); },
        [&] { handler().runExclusively([&] { note("fourth"); }); },
        [&] { handler().runExclusively([&] { note("fifth"); }); },
        [&] { request("sixth"); },
    };
    std::vector<std::thread> threads;
    for (const auto& caller : callers) {
        SleepingThread waiting;
        threads.emplace_back([&caller, &waiting] {
            waiting.isMe();
            caller();
        });
        ASSERT_TRUE(waiting.fallsAsleep());
    }
    release();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(notes(), ElementsAre("first", "second", "third", "fourth", "fifth", "sixth"));
}

TEST_F(HandlerExclusiveTest, ManyCallersAndRequestsRunOneAtATime) {
    constexpr int kCallers = 8;
    constexpr int kRounds = 200;
    std::atomic<int> running{0};
    std::atomic<int> together{0};
    int runs = 0; // on the dispatcher only
    const auto once = [&] {
        together += ++running == 1 ? 0 : 1;
        ++runs;
        --running;
    };
    command().willRun(once);
    std::vector<std::thread> callers;
    for (int caller = 0; caller < kCallers; ++caller)
        callers.emplace_back([&, caller] {
            RecordingListener listener;
            for (int round = 0; round < kRounds; ++round) {
                if ((caller + round) % 2 == 0)
                    handler().runExclusively(once);
                else
                    EXPECT_EQ(handler().handleCommand(tokens({"scripted"}), &listener), "scripted ok");
            }
        });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(runs, kCallers * kRounds);
    EXPECT_EQ(together, 0);
}
