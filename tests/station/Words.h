#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace station {

/// The words of a command line, as a shell takes it: blanks part them, and '...' holds blanks or
/// nothing.
inline std::vector<std::string> words(const std::string& line) {
    std::vector<std::string> words;
    for (std::size_t at = 0; at < line.size();) {
        const bool isQuoted = line[at] == '\'';
        const std::size_t begin = at + (isQuoted ? 1 : 0);
        const std::size_t end = line.find(isQuoted ? '\'' : ' ', begin);
        words.push_back(line.substr(begin, end - begin));
        at = end == std::string::npos ? end : end + (isQuoted ? 2 : 1);
    }
    return words;
}

} // namespace station
