#pragma once

#include <string>
#include <string_view>

namespace station {

/// How one argument travels in a request line:
///
///     plain word (A-Z a-z 0-9 _)           bare         read         -> read
///     begins with "hex(" or "base64("      as it is     hex(01 0A)   -> hex(01 0A)
///     everything else                      quoted       /dev/x       -> "/dev/x"
///
/// What the line has no form for throws `Failure` (`InvalidRequest`) with a
/// message that says what to do instead: an empty argument, one that holds a
/// double quotation mark or a control character, and a `hex(...)` or `base64(...)`
/// that the unit would not read as what it says. Bytes from 0x80 on are fine.
std::string quoteArgument(std::string_view argument);

/// Appends the same to `text`.
void appendQuoted(std::string& text, std::string_view argument);

/// True for an argument that gives bytes in one of the two encodings, hex(...) or base64(...).
bool isEncodedArgument(std::string_view argument);

/// True for one in the encoding base64(...).
bool isBase64Argument(std::string_view argument);

/// These bytes in the encoding base64(...).
std::string base64Argument(std::string_view bytes);

/// The bytes that an argument stands for where no line has to carry it: those of a `hex(...)` or a
/// `base64(...)`, and every other argument's own. Throws `Failure` (`InvalidRequest`) for an encoding
/// that is not what it says, an unpaired hex digit included.
std::string argumentBytes(std::string_view argument);

} // namespace station
