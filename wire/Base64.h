#pragma once

#include <cstddef>
#include <string>

namespace System {

/// The system library's base64 codec (RFC 4648 alphabet, `=` padding). Any thread; never blocks.

/// The text of `size` bytes, without line breaks. Throws std::bad_alloc.
std::string encodeBase64(const unsigned char* bytes, std::size_t size);

/// Decodes `text` into at most `size` bytes. Returns how many bytes the text stands for, or -1 when the
/// text is malformed or does not fit; `bytes` then holds what was decoded up to that point. A text with
/// padding fits only where there is room for one byte more than it stands for. Null `bytes` take any
/// text.
int decodeBase64(const char* text, unsigned char* bytes, std::size_t size);

} // namespace System
