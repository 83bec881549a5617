#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/AbstractCmd.h"
#include "support/RecordingListener.h"

/// A command that does what the test says. Destroying a command releases the buffer that all of them
/// share, so they are only ever made here and stay for the length of the process.
class ScriptedCommand : public AbstractCmd {
public:
    static ScriptedCommand& make(char id, const std::string& name, bool registerSelf = false);
    /// The one that most cases need: 'D' "diag", which is not registered.
    static ScriptedCommand& diag();

    ProcessResponse* process(Tokens& tokens) override { return onTokens(tokens); }
    ProcessResponse* process(Bytes* request) override { return onRequest(request); }

    using AbstractCmd::listener;

    std::function<ProcessResponse*(Tokens&)> onTokens;
    std::function<ProcessResponse*(Bytes*)> onRequest;

    /// Runs this for each request, and answers plain success.
    void willRun(const std::function<void()>& action);
    /// Back to answering plain success.
    void reset() {
        willRun([] {});
    }

private:
    using AbstractCmd::AbstractCmd;
};
