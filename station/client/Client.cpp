#include "client/Client.h"

#include "client/Failure.h"
#include "client/QuietTime.h"

namespace station {

namespace {

constexpr char kSilentCommand[] = "ack";

std::optional<std::string> messageOf(const std::string& line) {
    if (auto message = infoMessage(line))
        return message;
    return greeting(line);
}

} // namespace

Answer Client::execute(const Request& request, const Deadline& deadline, const InfoSink& onInfo) {
    send(request, deadline);
    return receive(request.name(), deadline, onInfo);
}

void Client::send(const Request& request, const Deadline& deadline) {
    m_link.send(request.bytes(), deadline);
}

Answer Client::receive(const std::string& name, const Deadline& deadline, const InfoSink& onInfo) {
    const bool staysSilent = m_emptyAnswer == EmptyAnswer::NotSent && name == kSilentCommand;
    const Deadline end =
        staysSilent ? Deadline::earlier(Deadline::after(kQuietTime), deadline) : deadline;
    while (const auto line = nextLine(end)) {
        const auto message = messageOf(*line);
        if (!message)
            return parseAnswer(name, *line);
        onInfo(*message);
    }
    if (!staysSilent)
        failWithoutAnswer();
    return Answer{};
}

void Client::takeArrived(const Deadline& deadline, const InfoSink& onInfo) {
    bool isClean = true;
    // What has just arrived may be the first part of more.
    for (Seconds wait{0}; !deadline.expired() && receiveMore(Deadline::after(wait)); wait = kGap)
        isClean = takeDecoded(onInfo) && isClean;
    if (!isClean || m_decoder.isMidLine())
        onInfo("station: dropped what had arrived before the command and is no complete line");
    m_decoder = AnswerDecoder();
}

/// False when there was something that is no line; it is dropped.
bool Client::takeDecoded(const InfoSink& onInfo) try {
    while (const auto line = m_decoder.next())
        onInfo(messageOf(*line).value_or("station: dropped an answer to an earlier command: " + *line));
    return true;
} catch (const Failure&) {
    m_decoder = AnswerDecoder();
    return false;
}

bool Client::receiveMore(const Deadline& moment) {
    const auto bytes = m_link.receiveBy(moment);
    if (!bytes)
        return false;
    if (bytes->empty())
        throw Failure(Failure::Kind::ConnectionLost,
                      "malformed answer: the unit closed the connection before the answer was complete");
    m_decoder.feed(*bytes);
    return true;
}

std::optional<std::string> Client::nextLine(const Deadline& moment) {
    for (;;) {
        if (auto line = m_decoder.next())
            return line;
        if (moment.expired() || !receiveMore(moment))
            return std::nullopt;
    }
}

} // namespace station
