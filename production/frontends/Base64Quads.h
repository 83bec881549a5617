#pragma once

#include <cstddef>

/// How many characters of the alphabet or of its padding `text` begins with. Any thread.
std::size_t base64RunLength(const char* text, std::size_t length);

/// Decodes the quads at the beginning of `text` that stand for three bytes each (RFC 4648 alphabet): up
/// to the first one that is incomplete, padded or none. Returns how many they are. `bytes` has room for
/// them. Any thread.
///
/// The system's decoder understands everything else, and looks each character up by searching for it,
/// which costs more than all the rest of a memory write.
std::size_t decodeBase64Quads(const char* text, std::size_t length, unsigned char* bytes);
