#pragma once

#include <gmock/gmock.h>

#include "core/Handler.h"
#include "support/ScriptedCommand.h"

/// The Handler with its dispatcher running, and a command: 'Q' "scripted" does what a case
/// tells it to. A case finds it answering plain success, and leaves no response over.
class RunningHandler : public ::testing::Test {
protected:
    RunningHandler() {
        if (!handler().isValid())
            handler().start();
        command().reset();
    }
    ~RunningHandler() override { EXPECT_EQ(ProcessResponse::m_counter, m_responses); }

    static Handler& handler() { return *Handler::getInstance(); }

    static ScriptedCommand& command() {
        static ScriptedCommand& scripted = ScriptedCommand::make('Q', "scripted", true);
        return scripted;
    }

    Bytes send(Bytes request) { return handler().handleCommand(&request, &m_listener); }
    std::string send(const std::vector<std::string>& texts) {
        return handler().handleCommand(tokens(texts), &m_listener);
    }

    RecordingListener m_listener;

private:
    const unsigned int m_responses = ProcessResponse::m_counter;
};
