// The station's two ways to say a command: where a command's words have a frame, a unit that gets the
// frames answers what one answers that gets the lines.

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "Expect.h"
#include "client/Answer.h"
#include "client/BinaryRequest.h"
#include "client/Failure.h"
#include "client/Request.h"
#include "client/UnitFrame.h"
#include "support/CommandRun.h"
#include "support/Lines.h"

namespace {

using station::Answer;
using Words = std::vector<std::string>;

/// A line's words, which stand a blank apart or in quotation marks.
Words wordsOf(std::string_view line) {
    Words words;
    while (!line.empty()) {
        const bool isQuoted = line.front() == '"';
        line.remove_prefix(isQuoted ? 1 : 0);
        // The blanks in hex(...) separate nothing.
        const bool isHex = line.substr(0, 4) == "hex(";
        const std::size_t end = std::min(line.find(isQuoted ? '"' : isHex ? ')' : ' '), line.size());
        const std::size_t length = std::min(end + (isHex && !isQuoted ? 1 : 0), line.size());
        if (length > 0)
            words.emplace_back(line.substr(0, length));
        line.remove_prefix(std::min(length + (isHex && !isQuoted ? 0 : 1), line.size()));
    }
    return words;
}

struct Command {
    std::string name;
    Words arguments;
    std::string line; // without its framing
    station::BinaryRequest request;
};

/// Nothing for words that have not both forms.
std::optional<Command> commandOf(const std::string& line) {
    Words words = wordsOf(line);
    if (words.empty())
        return std::nullopt;
    const std::string name = words.front();
    words.erase(words.begin());
    try {
        const station::Request request(name, words);
        auto frame = station::BinaryRequest::encode(name, words);
        const std::string& bytes = request.bytes();
        return Command{name, words, bytes.substr(1, bytes.size() - 3), frame};
    } catch (const station::Failure& failure) {
        expect(failure.kind() == station::Failure::Kind::InvalidRequest,
               "Words that have not both forms are refused as such");
        return std::nullopt;
    }
}

using Answers = std::vector<Answer>;

Answers answersToLines(const std::vector<Command>& commands) {
    Answers answers;
    for (const Command& command : commands)
        answers.push_back(station::parseAnswer(command.name, CommandRun::run(command.line).answer));
    return answers;
}

Answer answerToFrame(const Command& command) {
    const std::string& bytes = command.request.bytes();
    const std::string answer = CommandRun::run(CommandRun::Frame(bytes.begin(), bytes.end())).answer;
    if (answer.empty())
        return {};
    const station::UnitFrame frame(answer);
    expect(command.request.isAnsweredBy(frame), "An answer is taken for one");
    return command.request.answer(frame);
}

Answers answersToFrames(const std::vector<Command>& commands) {
    Answers answers;
    for (const Command& command : commands)
        answers.push_back(answerToFrame(command));
    return answers;
}

/// Of files and output a frame has the beginning, and it is shown as text.
bool isContent(const Command& command) {
    return command.name == "exec" || command.name == "status";
}

void compare(const Command& command, const Answer& toLine, const Answer& toFrame) {
    // A frame leaves out the seconds, and has the board's revision as it was found first.
    if (command.request.asksForStatus())
        return;
    const std::string what = command.line + " " + readable(command.request.bytes());
    expectSame<bool>(toLine.isRefusal(), toFrame.isRefusal(),
                     ("whether it is refused: " + what).c_str());
    // Some refusals have a code of their own in each.
    if (!toLine.isRefusal() && !isContent(command))
        expectSame(toLine.text, toFrame.text, ("the answer to " + what).c_str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Lines lines({reinterpret_cast<const char*>(data), size});
    std::vector<Command> commands;
    for (const std::string& line : lines.requests)
        if (auto command = commandOf(line))
            commands.push_back(*std::move(command));
    CommandRun::renew(lines.faults);
    const Answers toLines = answersToLines(commands);
    CommandRun::renew(lines.faults);
    const Answers toFrames = answersToFrames(commands);
    for (std::size_t at = 0; at < commands.size(); ++at)
        compare(commands[at], toLines[at], toFrames[at]);
    return 0;
}
