#include "client/UnitFrameDecoder.h"

#include "client/Failure.h"
#include "client/Hex.h"
#include "wire/Frame.h"

namespace station {

namespace {

constexpr std::size_t kShortestFrame = 2;
constexpr std::size_t kShownBytes = 16;

[[noreturn]] void refuse(const std::string& reason, std::string_view bytes) {
    throw Failure(Failure::Kind::MalformedAnswer, "malformed answer: " + reason + ", beginning with " +
                                                      hexArgument(bytes.substr(0, kShownBytes)));
}

} // namespace

std::optional<UnitFrame> UnitFrameDecoder::next() {
    if (m_bytes.empty())
        return std::nullopt;
    const std::size_t length = static_cast<unsigned char>(m_bytes[0]);
    if (length < kShortestFrame)
        refuse("a frame of " + std::to_string(length) + " bytes", m_bytes);
    if (m_bytes.size() < kShortestFrame)
        return std::nullopt;
    const bool isDebug = static_cast<unsigned char>(m_bytes[1]) == wire::kDebugId;
    if (!isDebug && length < wire::kAnswerHeader)
        refuse("a frame too short for an answer", m_bytes);
    if (m_bytes.size() < length)
        return std::nullopt;
    UnitFrame frame(m_bytes.substr(0, length));
    m_bytes.erase(0, length);
    return frame;
}

} // namespace station
