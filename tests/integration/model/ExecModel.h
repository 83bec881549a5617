#pragma once

#include <map>

#include "model/CommandModel.h"

/// The command exec with the few command lines that are used here: true, false, echo WORD, kill -9 $$,
/// and echo WORD >FILE and cat FILE with one of the notes.
class ExecModel : public CommandModel {
public:
    static constexpr int kNotes = 4;

    Answer answer(const Request& request) override;
    bool knows(const Request& request) const override;

    static std::string note(int number) { return "/tmp/note" + std::to_string(number); }

private:
    Answer answerLine(const Words& words);
    Answer answerFrame(const std::string& frame);
    /// A success with the output.
    Answer run(const std::string& command);

    std::map<std::string, std::string> m_notes;
};
