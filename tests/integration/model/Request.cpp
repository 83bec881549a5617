#include "model/Request.h"

#include <algorithm>

#include "model/Notation.h"
#include "support/BinaryFrames.h"
#include "support/Lines.h"

namespace {

bool isPlain(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
               (byte >= 'A' && byte <= 'Z') || byte == '_';
    });
}

std::string quotedForShell(const std::string& word) {
    if (isPlain(word))
        return word;
    std::string quoted = "'";
    for (const char character : word)
        quoted += character == '\'' ? "'\\''" : std::string(1, character);
    return quoted + "'";
}

} // namespace

std::string Word::value() const {
    constexpr std::size_t kGroup = 3;
    if (notation == Notation::Text)
        return bytes + '\0';
    std::string all = bytes;
    if (notation == Notation::Base64)
        all.resize((bytes.size() + kGroup - 1) / kGroup * kGroup);
    return all;
}

std::string Word::written() const {
    if (notation == Notation::Text)
        return isPlain(bytes) ? bytes : '"' + bytes + '"';
    // Without a blank there would be no word at all.
    if (bytes.empty())
        return "hex( )";
    return notation == Notation::Hex ? hexText(bytes) : base64Text(bytes);
}

std::string Request::wholeFrame() const {
    return framed(frame);
}

std::string Request::sent() const {
    if (isFrame())
        return wholeFrame();
    std::string line;
    for (const Word& word : words)
        line += (line.empty() ? "" : " ") + word.written();
    return request(line);
}

std::string pasted(const Request& request, const std::string& target) {
    std::string line = "station --target " + target;
    if (request.isFrame())
        return line + " raw '" + hexText(request.wholeFrame()) + "'";
    for (const Word& word : request.words)
        line +=
            ' ' + quotedForShell(word.notation == Word::Notation::Text ? word.bytes : word.written());
    return line;
}
