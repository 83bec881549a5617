#include "session/Refused.h"

#include <utility>

namespace station {

namespace {

std::string joined(const std::vector<std::string>& messages) {
    std::string text;
    for (const std::string& message : messages)
        text += (text.empty() ? "" : "; ") + message;
    return text;
}

} // namespace

Refused::Refused(std::uint32_t code, std::string message)
    : std::runtime_error("refused: " + refusalText(code) + (message.empty() ? "" : ": " + message)),
      m_code(code),
      m_message(std::move(message)) {}

Answer carryOut(Session& session, const std::string& name, const std::vector<std::string>& arguments,
                const Session::InfoSink& onInfo) {
    session.begin(name, arguments);
    return finishCommand(session, onInfo);
}

Answer finishCommand(Session& session, const Session::InfoSink& onInfo) {
    std::vector<std::string> messages;
    const auto keep = [&](const std::string& message) { messages.push_back(message); };
    Answer answer;
    try {
        answer = session.finish(keep);
    } catch (...) {
        for (const std::string& message : messages)
            onInfo(message);
        throw;
    }
    if (answer.isRefusal())
        throw Refused(answer.code, joined(messages));
    for (const std::string& message : messages)
        onInfo(message);
    return answer;
}

} // namespace station
