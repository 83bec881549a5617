#include "FakeLine.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <utility>

#include "support/Waiting.h"

namespace station {

FakeLine::FakeLine() : m_target{path()} {
    makeRaw();
}

void FakeLine::waitForStation() const {
    EXPECT_TRUE(eventually([this] {
        const termios now = attributes();
        return ::cfgetospeed(&now) == B115200;
    })) << "no station has come";
}

std::string FakeLine::receiveRest() const {
    // Bytes on their way cannot be waited for, but they stay in order: a mark goes behind them.
    const std::string mark = "\x01mark\x01";
    EXPECT_EQ(::write(terminal(), mark.data(), mark.size()), static_cast<ssize_t>(mark.size()));
    std::string bytes = receiveTo(mark);
    bytes.resize(std::max(bytes.size(), mark.size()) - mark.size());
    return bytes;
}

namespace {

void play(FakeLine& line, const Step& step) {
    switch (step.kind) {
        case Step::Arrives:
            return line.send(step.bytes);
        case Step::Sent:
            EXPECT_EQ(line.receive(step.bytes.size()), step.bytes);
            return;
        case Step::HangUp:
            return line.hangUp();
        case Step::Opened:
            return line.waitForStation();
        case Step::Silence:
            ADD_FAILURE() << "a line cannot tell when its station has seen a silence";
    }
}

/// Plays what arrives first; the rest is left.
std::function<void()> afterItsBeginning(FakeLine& line, const Steps& steps) {
    auto next = steps.begin();
    for (; next != steps.end() && next->kind == Step::Arrives; ++next)
        play(line, *next);
    return [&line, rest = Steps(next, steps.end())] {
        for (const Step& step : rest)
            play(line, step);
    };
}

} // namespace

LineScript::LineScript(FakeLine& line, const Steps& steps)
    : LineScript(afterItsBeginning(line, steps)) {}

LineScript::LineScript(std::function<void()> script)
    : m_thread([script = std::move(script)] {
          // Signals of a test are for the thread that runs the test.
          sigset_t all;
          ::sigfillset(&all);
          ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
          script();
      }) {}

std::string statusFrame(bool isFirst) {
    return ::statusFrame("2026/11/21 09:03", !isFirst);
}

} // namespace station
