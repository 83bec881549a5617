#include "model/ExecModel.h"

#include <algorithm>
#include <regex>

#include "model/Notation.h"

namespace {

constexpr std::size_t kMostInFrame = 246;
// No time that might pass on a busy machine; 0 stands for five seconds.
constexpr std::int64_t kShortestLimit = 60;

constexpr char kKnown[] =
    "true|false|kill -9 \\$\\$|echo [a-z0-9]+|echo [a-z0-9]+ >/tmp/note[0-3]|cat /tmp/note[0-3]";

bool isKnown(const std::string& command) {
    static const std::regex known(kKnown);
    return std::regex_match(command, known);
}

bool isPrintable(char character) {
    return character >= ' ' && character <= '~';
}

} // namespace

bool ExecModel::knows(const Request& request) const {
    constexpr std::size_t kHead = 5;
    if (request.isFrame()) {
        const std::string frame = request.wholeFrame();
        if (frame.size() <= kHead || byteAt(frame, 2) != 1 ||
            !std::all_of(frame.begin() + kHead, frame.end(), isPrintable))
            return true;
        return byteAt(frame, 3) * 256 + byteAt(frame, 4) >= kShortestLimit &&
               isKnown(frame.substr(kHead));
    }
    const Words words(request.words);
    if (words.count() != 4 || !words.begins(1, "command"))
        return true;
    return words.number(2) >= kShortestLimit && isKnown(words.text(3));
}

Answer ExecModel::answer(const Request& request) {
    return request.isFrame() ? answerFrame(request.wholeFrame()) : answerLine(Words(request.words));
}

Answer ExecModel::run(const std::string& command) {
    constexpr std::size_t kEchoLength = 5, kCatLength = 4;
    if (command == "kill -9 $$")
        return Answer::failure(std::string("child process for c command received signal pid: ") +
                               kSomeNumber + ", returncode: 9");
    // How a command ends is not told, unless a signal ends it.
    if (command == "true" || command == "false")
        return Answer::success("");
    if (command[0] == 'c')
        return Answer::success(m_notes[command.substr(kCatLength)]);
    const std::size_t blank = command.find(" >");
    const std::string output = command.substr(kEchoLength, blank - kEchoLength) + "\n";
    if (blank == std::string::npos)
        return Answer::success(command.substr(kEchoLength) + "\n");
    m_notes[command.substr(blank + 2)] = output;
    return Answer::success("");
}

Answer ExecModel::answerLine(const Words& words) {
    if (words.count() != 4)
        return Answer::failure(formatted(
            "Command execute was called with %zu parameters must have 4 parameters", words.count()));
    if (!words.begins(1, "command"))
        return Answer::failure("Unsupported exec subcommand ");
    Answer answer = run(words.text(3));
    if (answer.succeeds())
        answer.content = base64Text(answer.content);
    return answer;
}

Answer ExecModel::answerFrame(const std::string& frame) {
    constexpr std::size_t kHead = 5;
    if (frame.size() <= kHead)
        return Answer::failure("Command 'c': too short! min.6 bytes");
    if (byteAt(frame, 2) != 1)
        return Answer::failure("unsupported c subcommand");
    const auto strange = std::find_if_not(frame.begin() + kHead, frame.end(), isPrintable);
    if (strange != frame.end())
        return Answer::failure(formatted("invalid character in input command: %02X",
                                         static_cast<unsigned>(static_cast<unsigned char>(*strange))));
    Answer answer = run(frame.substr(kHead));
    if (answer.succeeds())
        answer.content.resize(std::min(answer.content.size(), kMostInFrame));
    return answer;
}
