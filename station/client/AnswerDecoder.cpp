#include "client/AnswerDecoder.h"

#include <algorithm>

#include "client/Failure.h"
#include "wire/Line.h"

namespace station {

namespace {
constexpr char kOpening[] = {wire::kStartOfText, wire::kAnswerMark};
constexpr char kEnding[] = {wire::kEndOfText, wire::kLineFeed};

bool endsWith(const std::string& bytes, char last) {
    return !bytes.empty() && bytes.back() == last;
}
} // namespace

void AnswerDecoder::feed(std::string_view bytes) {
    m_bytes.erase(0, m_start);
    m_scanned -= m_start;
    m_start = 0;
    m_bytes += bytes;
}

std::optional<std::string> AnswerDecoder::next() {
    checkOpening();
    const std::size_t textStart = m_start + sizeof kOpening;
    const std::size_t end = m_bytes.find(kEnding, std::max(textStart, m_scanned), sizeof kEnding);
    if (end == std::string::npos) {
        // The last byte may be the first one of the ending: it is looked at again with the next bytes.
        m_scanned = m_bytes.size() - (endsWith(m_bytes, wire::kEndOfText) ? 1 : 0);
        checkLength(m_scanned - std::min(textStart, m_scanned));
        return std::nullopt;
    }
    checkLength(end - textStart);
    std::string text = m_bytes.substr(textStart, end - textStart);
    m_start = end + sizeof kEnding;
    m_scanned = m_start;
    return text;
}

void AnswerDecoder::checkOpening() const {
    const std::size_t received = std::min(m_bytes.size() - m_start, sizeof kOpening);
    if (m_bytes.compare(m_start, received, kOpening, received) != 0)
        throw Failure(Failure::Kind::MalformedAnswer,
                      "malformed answer: a line does not begin with STX and '#'");
}

void AnswerDecoder::checkLength(std::size_t textLength) const {
    if (textLength > m_longestText)
        throw Failure(Failure::Kind::MalformedAnswer, "malformed answer: a line is longer than " +
                                                          std::to_string(m_longestText) + " bytes");
}

} // namespace station
