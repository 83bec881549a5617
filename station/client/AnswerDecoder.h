#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace station {

/// Cuts the bytes that a unit sends into texts: each travels as STX '#' text ETX LF, and may itself hold
/// line feeds and quotation marks. Bytes may come in pieces of any size. No I/O; not synchronised.
///
/// The bytes are looked at in `next()` and not before, so that a complete text is handed out even when
/// garbage follows it.
class AnswerDecoder {
public:
    // Far above the longest answer of a unit; keeps a peer that never ends its line from eating the
    // machine's memory.
    static constexpr std::size_t kLongestText = std::size_t{64} * 1024 * 1024;

    explicit AnswerDecoder(std::size_t longestText = kLongestText) : m_longestText(longestText) {}

    void feed(std::string_view bytes);

    /// The next complete text without its framing, or nothing when more bytes are needed. Throws
    /// `Failure`
    /// (`MalformedAnswer`) as soon as the bytes cannot become a line, or when a text is longer than the
    /// limit (bytes); there is no way back from that, and every later call throws as well.
    std::optional<std::string> next();

    /// True when bytes are left that `next()` has not made a text of.
    bool isMidLine() const { return m_start < m_bytes.size(); }

private:
    void checkOpening() const;
    void checkLength(std::size_t textLength) const;

    std::size_t m_longestText;
    std::string m_bytes;
    std::size_t m_start = 0;   // of the line that is being received, in m_bytes
    std::size_t m_scanned = 0; // how much of m_bytes is known to hold no end of that line
};

} // namespace station
