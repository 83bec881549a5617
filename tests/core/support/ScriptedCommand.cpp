#include "support/ScriptedCommand.h"

ScriptedCommand& ScriptedCommand::make(char id, const std::string& name, bool registerSelf) {
    static auto& all = *new std::vector<ScriptedCommand*>; // keeps them reachable to the very end
    all.push_back(new ScriptedCommand(id, name, registerSelf));
    all.back()->reset();
    return *all.back();
}

ScriptedCommand& ScriptedCommand::diag() {
    static ScriptedCommand& command = make('D', "diag");
    return command;
}

void ScriptedCommand::willRun(const std::function<void()>& action) {
    const auto run = [action] {
        action();
        return new ProcessResponse(ProcessResponse::kSuccess);
    };
    onTokens = [run](Tokens&) { return run(); };
    onRequest = [run](Bytes*) { return run(); };
}
