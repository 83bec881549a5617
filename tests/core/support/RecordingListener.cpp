#include "support/RecordingListener.h"

#include <algorithm>

Bytes debugFrame(const std::string& text) {
    Bytes frame(text.size() + 2);
    frame[0] = static_cast<unsigned char>(frame.size());
    frame[1] = 'd';
    std::copy(text.begin(), text.end(), frame.begin() + 2);
    return frame;
}

std::vector<char> token(const std::string& text) {
    std::vector<char> bytes(text.begin(), text.end());
    bytes.push_back('\0');
    return bytes;
}

Tokens tokens(const std::vector<std::string>& texts) {
    Tokens list;
    list.reserve(texts.size());
    for (const std::string& text : texts)
        list.push_back(token(text));
    return list;
}
