#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

/// A token's characters up to its terminating zero, if it has one.
inline std::string tokenText(const std::vector<char>& token) {
    return std::string(token.begin(), std::find(token.begin(), token.end(), '\0'));
}

/// Whether the token's first characters are those of `word`; more may follow.
inline bool beginsWith(const std::vector<char>& token, const char* word) {
    const std::size_t length = std::strlen(word);
    return token.size() >= length && std::memcmp(token.data(), word, length) == 0;
}
