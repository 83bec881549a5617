#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// What a fuzzer's target says of its subject. A process whose expectation does not hold ends with a
/// message, which is how a fuzzer learns that it found something.
[[noreturn]] inline void fail(const std::string& message) {
    std::fprintf(stderr, "Expectation failed: %s\n", message.c_str());
    std::abort();
}

inline void expect(bool holds, const char* expectation) {
    if (!holds)
        fail(expectation);
}

/// Bytes as one can read them: what is not printable is escaped.
inline std::string readable(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "\"";
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\')
            text += character;
        else
            text += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
    return text + "\" (" + std::to_string(bytes.size()) + " bytes)";
}

/// Two strings of bytes, or two numbers; `what` says of what.
inline void expectSame(std::string_view expected, std::string_view actual, const char* what) {
    if (expected != actual)
        fail(std::string(what) + ":\n  expected " + readable(expected) + "\n  but got  " +
             readable(actual));
}

template <typename Number, typename = decltype(std::to_string(Number()))>
void expectSame(Number expected, Number actual, const char* what) {
    if (expected != actual)
        fail(std::string(what) + ": expected " + std::to_string(expected) + ", but got " +
             std::to_string(actual));
}
