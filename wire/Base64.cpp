#include "wire/Base64.h"

#include <netinet/in.h>
#include <resolv.h>
#include <sys/types.h>

namespace System {

std::string encodeBase64(const unsigned char* bytes, std::size_t size) {
    // One more than the text: the encoder also writes a terminating zero.
    std::string text((size + 2) / 3 * 4 + 1, '\0');
    const int length = __b64_ntop(bytes, size, text.data(), text.size());
    text.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return text;
}

int decodeBase64(const char* text, unsigned char* bytes, std::size_t size) {
    return __b64_pton(text, bytes, size);
}

} // namespace System
