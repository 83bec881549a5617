#include "model/StatusModel.h"

#include "model/Notation.h"
#include "support/BinaryFrames.h"
#include "support/UnitFiles.h"

Answer StatusModel::answer(const Request& request) {
    return request.isFrame() ? answerFrame(request.wholeFrame()) : answerLine(Words(request.words));
}

Answer StatusModel::answerLine(const Words& words) const {
    constexpr const char* kFiles[] = {kImageVersionFile, kSerialNumberFile, kApplicationVersionFile,
                                      kSystemVersionFile};
    constexpr std::size_t kDigits = 2;
    if (words.count() == 1)
        return Answer::success("\"" + m_buildStamp + "\" A024 \"1A\" 4");
    const std::string selection = words.text(1).substr(0, kDigits);
    for (std::size_t at = 0; at < std::size(kFiles); ++at)
        if (selection == "0" + std::to_string(at + 1))
            return Answer::success(base64Text(contentOf(kFiles[at])));
    return Answer::failure("unsupported subcommand");
}

Answer StatusModel::answerFrame(const std::string& frame) const {
    constexpr std::size_t kHeader = 8, kEcho = 3;
    if (frame.size() > 3)
        return Answer::failure("Command 's': too long!");
    if (frame.size() < 3) {
        const std::string whole = statusFrame(m_buildStamp, true);
        Answer answer = Answer::success(whole.substr(kHeader));
        answer.echo = whole.substr(1, kEcho);
        return answer;
    }
    if (frame[2] != 1 && frame[2] != 2)
        return Answer::failure("unsupported subcommand");
    return Answer::success(contentOf(frame[2] == 1 ? kImageVersionFile : kSerialNumberFile));
}
