#include "ExpectedLink.h"

#include <algorithm>

#include "Expect.h"
#include "StandInCommands.h"
#include "core/BuildStamp.h"
#include "support/BinaryFrames.h"

namespace {

constexpr unsigned kLengthMs = 1000;
constexpr unsigned kSilenceMs = 500; // within a request, and before an acknowledgement
constexpr std::size_t kMostPayload = 247;
constexpr char kTooShort[] = "request size < 4";

/// Whether D1 to D3 can be echoed.
bool isAnswerable(const std::string& request) {
    return request.size() >= 4;
}

std::string success(const std::string& request, std::string_view payload) {
    return isAnswerable(request) ? answerFrame(request, payload) : debugFrame(kTooShort);
}

std::string failure(const std::string& request, std::string_view text, std::string_view code) {
    std::string frame = errorFrame(request);
    frame.replace(4, code.size(), code);
    return debugFrame(text) + (isAnswerable(request) ? frame : debugFrame(kTooShort));
}

std::string genericFailure(const std::string& request, std::string_view text) {
    return failure(request, text, std::string("\1\1\0\0", 4));
}

std::string nameOf(unsigned char id) {
    if ((id >= 'A' && id <= 'Z') || (id >= 'a' && id <= 'z'))
        return std::string(1, static_cast<char>(id));
    constexpr char kDigits[] = "0123456789ABCDEF";
    return {'0', 'x', kDigits[id >> 4], kDigits[id & 0xF]};
}

/// A frame is sent as far as its first byte says.
std::string asFarAsItSays(std::string_view frame) {
    return std::string(frame.substr(0, static_cast<unsigned char>(frame.front())));
}

} // namespace

ExpectedLink::ExpectedLink(const Schedule& schedule) : m_reader(schedule) {
    for (;;) {
        if (!m_isOpen) {
            announce();
            continue;
        }
        const Received length = receive(1, kLengthMs);
        if (length.hasFailed)
            m_isOpen = false;
        else if (!length.bytes.empty())
            serve(static_cast<unsigned char>(length.bytes.front()));
        else if (m_reader.isAtEnd())
            return;
    }
}

/// So many bytes, or those that came before the silence.
ExpectedLink::Received ExpectedLink::receive(std::size_t count, unsigned silenceMs) {
    std::string bytes;
    while (bytes.size() < count && m_reader.wait(silenceMs)) {
        const Schedule::Arrival arrival = m_reader.next();
        m_reader.take();
        if (arrival.kind == Schedule::Taking)
            m_isOpen = false;
        if (arrival.kind != Schedule::Byte)
            return {true, {}};
        bytes += arrival.byte;
    }
    return {false, bytes};
}

void ExpectedLink::announce() {
    m_isOpen = true;
    answer(repetitionFrames() + statusFrame(getDateTimeString(), true));
}

/// Of the acknowledgement only what it takes off the line matters; a line that hangs up then is not
/// closed.
void ExpectedLink::answer(const std::string& frames) {
    m_sent += frames;
    receive(2, kSilenceMs);
}

void ExpectedLink::serve(unsigned char length) {
    if (length < 2) {
        const std::string text = "Commandlen of " + std::to_string(length) + " not allowed";
        answer(debugFrame(text) + debugFrame(kTooShort) + errorFrame({}));
        return;
    }
    const Received body = receive(length - std::size_t{1}, kSilenceMs);
    if (body.hasFailed)
        m_isOpen = false;
    if (body.bytes.empty())
        return;
    std::string request = framed(body.bytes);
    request.front() = static_cast<char>(length);
    request.resize(length);
    run(request);
}

void ExpectedLink::run(const std::string& request) {
    if (StandIn::kAll.find(request[1]) != std::string_view::npos)
        m_requests.push_back(request);
    // A frame of its own needs nothing to be echoed.
    const bool isAnswered = request[1] == StandIn::kOwnFrame && request.size() > 2
                                ? true
                                : isAnswerable(request) && request[1] != StandIn::kSilence;
    if (isAnswered)
        answer(responseTo(request));
    else
        m_sent += responseTo(request);
}

std::string ExpectedLink::responseTo(const std::string& request) const {
    const std::string rest = request.substr(2);
    switch (request[1]) {
        case StandIn::kSuccess:
        case StandIn::kStatus:
        case StandIn::kShell:
            return success(request, {});
        case StandIn::kPayload:
            if (isAnswerable(request))
                return success(request, std::string_view(request).substr(0, kMostPayload));
            return debugFrame(kTooShort) + genericFailure(request, "invalid vector<T> subscript");
        case StandIn::kFailure:
            return failure(request, rest.substr(0, rest.find('\0')), std::string("\0\0\x12\x34", 4));
        case StandIn::kSilence:
            return {};
        case StandIn::kTalk:
            return debugFrame(rest) + success(request, {});
        case StandIn::kOwnFrame:
            return rest.empty() ? success(request, {}) : asFarAsItSays(rest);
        case StandIn::kException:
            return genericFailure(request, StandIn::kExceptionText);
        default:
            return genericFailure(
                request, "No Handler for the Command " + nameOf(static_cast<unsigned char>(request[1])));
    }
}
