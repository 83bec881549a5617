// Many front ends at once: each gets its own answer, and commands run one at a time.
#include <atomic>
#include <mutex>
#include <thread>

#include "core/ProcessResponseAscii.h"
#include "support/RunningHandler.h"
#include "support/Waiting.h"

namespace {

constexpr int kThreads = 16;
constexpr int kRequests = 2000;

/// Keeps the first of what went wrong on any thread.
class Findings {
public:
    void check(bool good, const std::string& what) {
        if (good)
            return;
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_count++ == 0)
            m_first = what;
    }

    int count() const { return m_count; }
    const std::string& first() const { return m_first; }

private:
    std::mutex m_mutex;
    int m_count = 0;
    std::string m_first;
};

/// Answers what it was asked with, and notices when it is not alone.
class HandlerQueueTest : public RunningHandler {
protected:
    HandlerQueueTest() {
        command().onTokens = [this](Tokens& list) {
            const Alone alone(*this);
            auto* response = new ProcessResponseAscii(0, "");
            response->answer = list.at(1).data();
            return response;
        };
        command().onRequest = [this](Bytes* request) {
            const Alone alone(*this);
            auto* response = new ProcessResponseTavrin(0, "");
            Bytes payload(request->begin() + 4, request->end());
            command().tavrin_fillDefaultResponse(request, response, payload);
            return response;
        };
    }

    void sendKnownName(int thread, int number) {
        const std::string text = std::to_string(thread) + "/" + std::to_string(number);
        RecordingListener listener;
        const std::string answer = handler().handleCommand(tokens({"scripted", text}), &listener);
        m_findings.check(answer == "scripted " + text, text + " was answered " + answer);
        m_findings.check(listener.lines.empty(), text + " got a line of someone else");
    }

    void sendUnknownName(int thread, int number) {
        const std::string name = "u" + std::to_string(thread) + "x" + std::to_string(number);
        RecordingListener listener;
        const std::string answer = handler().handleCommand(tokens({name}), &listener);
        m_findings.check(answer == "Error Error 0x10", name + " was answered " + answer);
        const std::vector<std::string> expected = {"Info \"No Handler for the Command " + name + "\""};
        m_findings.check(listener.lines == expected, name + " got the line of someone else");
    }

    void sendKnownId(int thread, int number) {
        const Bytes own = ownBytes(thread, number);
        Bytes request = {0x07, 'Q', own[0], own[1], own[0], own[1], own[2]};
        const Bytes expected = {11, 'Q', own[0], own[1], 0, 0, 0, 0, own[0], own[1], own[2]};
        RecordingListener listener;
        m_findings.check(handler().handleCommand(&request, &listener) == expected, "a wrong frame");
        m_findings.check(listener.frames.empty(), "a debug frame of someone else");
    }

    void sendUnknownId(int thread, int number) {
        const Bytes own = ownBytes(thread, number);
        const auto id = static_cast<unsigned char>(0x80 + thread);
        Bytes request = {0x04, id, own[1], own[2]};
        const Bytes expected = {8, id, own[1], own[2], 1, 1, 0, 0};
        RecordingListener listener;
        m_findings.check(handler().handleCommand(&request, &listener) == expected,
                         "a wrong error frame");
        const std::vector<Bytes> text = {
            debugFrame("No Handler for the Command " + handler().getHandlerName(id))};
        m_findings.check(listener.frames == text, "the debug frame of someone else");
    }

    Findings m_findings;

private:
    class Alone {
    public:
        explicit Alone(HandlerQueueTest& test) : m_test(test) {
            m_test.m_findings.check(++m_test.m_running == 1, "two commands run at once");
        }
        ~Alone() { --m_test.m_running; }

    private:
        HandlerQueueTest& m_test;
    };

    static Bytes ownBytes(int thread, int number) {
        return {static_cast<unsigned char>(thread), static_cast<unsigned char>(number >> 8),
                static_cast<unsigned char>(number)};
    }

    std::atomic<int> m_running{0};
};

} // namespace

TEST_F(HandlerQueueTest, EveryCallerGetsExactlyItsOwnAnswer) {
    const unsigned int before = ProcessResponse::m_counter;
    std::atomic<int> answered{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([this, thread, &answered] {
            for (int number = 0; number < kRequests; ++number) {
                switch ((thread + number) % 4) {
                    case 0:
                        sendKnownName(thread, number);
                        break;
                    case 1:
                        sendKnownId(thread, number);
                        break;
                    case 2:
                        sendUnknownName(thread, number);
                        break;
                    default:
                        sendUnknownId(thread, number);
                        break;
                }
                ++answered;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(answered, kThreads * kRequests);
    EXPECT_EQ(m_findings.count(), 0) << m_findings.first();
    EXPECT_EQ(ProcessResponse::m_counter, before);
}

TEST_F(HandlerQueueTest, ACallerWaitsWhileAnotherRequestRuns) {
    std::atomic<bool> running{false};
    std::atomic<bool> mayEnd{false};
    std::atomic<int> answers{0};
    command().onTokens = [&](Tokens& list) {
        if (list.size() == 1)
            return new ProcessResponse(0);
        running = true;
        while (!mayEnd)
            std::this_thread::yield();
        return new ProcessResponse(0);
    };
    const auto ask = [&](const std::vector<std::string>& texts) {
        RecordingListener listener;
        m_findings.check(handler().handleCommand(tokens(texts), &listener) == "scripted ok",
                         "a wrong answer");
        ++answers;
    };
    std::thread first(ask, std::vector<std::string>{"scripted", "long"});
    ASSERT_TRUE(eventually([&] { return running.load(); }));
    std::thread second(ask, std::vector<std::string>{"scripted"});
    EXPECT_FALSE(eventually([&] { return answers != 0; }, std::chrono::milliseconds(20)));
    mayEnd = true;
    first.join();
    second.join();
    EXPECT_EQ(answers, 2);
    EXPECT_EQ(m_findings.count(), 0) << m_findings.first();
}
