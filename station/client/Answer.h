#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace station {

/// How a unit ended a command.
struct Answer {
    /// What follows the name: the result, or "Error 0x..." when the unit refused. May be empty, and may
    /// hold any byte.
    std::string text;

    /// The unit's status code: 0 on success, never 0 when it refused.
    std::uint32_t code = 0;

    /// The result as the bytes that travelled, over a binary link only. A refusal mostly has none; that
    /// of a wrong checksum has the right one.
    std::optional<std::string> payload = std::nullopt;

    bool isRefusal() const { return code != 0; }
};

/// The message of a line `Info "message"`, which a unit sends ahead of the final line; nothing for any
/// other line. The message may hold line feeds and quotation marks.
std::optional<std::string> infoMessage(std::string_view line);

/// What follows "Info " in a line without quotation marks: a unit greets with one when it opens its
/// serial port. Nothing for any other line.
std::optional<std::string> greeting(std::string_view line);

/// What a refusal with this code reads like, over either link.
std::string refusalText(std::uint32_t code);

/// The final line that answers the command `name`. An empty line is a success without a result. Throws
/// `Failure` (`MalformedAnswer`) for a line that answers something else.
Answer parseAnswer(std::string_view name, std::string_view line);

} // namespace station
