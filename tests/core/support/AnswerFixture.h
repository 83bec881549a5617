#pragma once

#include <gmock/gmock.h>

#include "support/ScriptedCommand.h"

/// A command whose responses become answers, and what its front end gets ahead of them.
class AnswerFixture : public ::testing::Test {
protected:
    AnswerFixture() { command().setListener(&m_listener); }
    ~AnswerFixture() override { command().setListener(nullptr); }

    static ScriptedCommand& command() { return ScriptedCommand::diag(); }

    RecordingListener m_listener;
};
