#include "client/BinaryRequest.h"

#include <utility>

#include "client/Failure.h"
#include "client/Quoting.h"
#include "client/RequestFrame.h"
#include "client/StatusPayload.h"
#include "wire/Frame.h"

namespace station {

BinaryRequest::BinaryRequest(Kind kind, std::string bytes, AnswerText text)
    : m_kind(kind), m_bytes(std::move(bytes)), m_text(std::move(text)) {}

BinaryRequest BinaryRequest::encode(std::string_view name, const std::vector<std::string>& arguments) {
    BinaryForm form = binaryForm(name, arguments);
    const bool isStatus = form.frame == requestFrame(kStatusId, {});
    return BinaryRequest(isStatus ? Kind::Status : Kind::Command, std::move(form.frame),
                         std::move(form.text));
}

BinaryRequest BinaryRequest::raw(const std::vector<std::string>& arguments) {
    if (arguments.size() != 1 || !isEncodedArgument(arguments[0]))
        throw Failure(Failure::Kind::InvalidRequest,
                      "raw takes the bytes of one frame, for example raw \"hex(03 73 01)\"");
    return BinaryRequest(Kind::Raw, argumentBytes(arguments[0]),
                         [](std::string_view) { return std::string(); });
}

bool BinaryRequest::isAnswered() const {
    const bool isForAck = m_bytes.size() >= wire::kRequestHeader && m_bytes[0] != 0 && m_bytes[0] != 1 &&
                          static_cast<unsigned char>(m_bytes[1]) == wire::kAckId;
    return !isForAck;
}

bool BinaryRequest::isAnsweredBy(const UnitFrame& frame) const {
    if (m_kind == Kind::Raw)
        return true;
    if (frame.id() != static_cast<unsigned char>(m_bytes[1]))
        return false;
    if (m_kind == Kind::Status)
        return frame.isStatus() || frame.code() != 0;
    // What the request does not have comes back as anything.
    const std::string echoed = {static_cast<char>(frame.subCommand()),
                                static_cast<char>(frame.parameter())};
    const std::string_view sent = std::string_view(m_bytes).substr(wire::kRequestHeader, echoed.size());
    return echoed.compare(0, sent.size(), sent) == 0;
}

Answer BinaryRequest::answer(const UnitFrame& frame) const {
    const std::string payload(frame.payload());
    if (frame.code() != 0)
        return Answer{refusalText(frame.code()), frame.code(), payload};
    return Answer{m_text(payload), 0, payload};
}

} // namespace station
