#pragma once

#include <cstddef>
#include <string_view>

#include "client/forms/BinaryForm.h"

namespace station {

/// Throws `Failure` (`MalformedAnswer`) when the payload is not of this length.
void checkLength(std::string_view payload, std::size_t length);

/// A payload in hexadecimal as an ASCII answer says it, for example hex(0307).
std::string hexText(std::string_view payload);

/// For a payload of `length` bytes that says nothing: "ok".
AnswerText doneText(std::size_t length = 0);

/// For a payload of `length` bytes: `hexText` of it.
AnswerText hexTextOf(std::size_t length);

/// For a payload of `length` bytes: the opening and base64(...) of them.
AnswerText base64TextOf(std::size_t length, std::string_view opening = "");

/// The same for a payload of at most `most` bytes, which may be none.
AnswerText base64TextUpTo(std::size_t most, std::string_view opening);

/// For a payload that is text: as it is when it is printable, as hex(...) when not.
AnswerText printedText();

} // namespace station
