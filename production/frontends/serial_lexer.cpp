#include "frontends/serial_lexer.h"

#include <cstring>
#include <string>

#include "core/StringFormat.h"
#include "frontends/Base64Quads.h"
#include "wire/Base64.h"
#include "wire/HexDigit.h"

namespace {

constexpr std::size_t kMaxHexCharacters = 2048;
constexpr std::size_t kCharactersPerQuad = 4;
constexpr std::size_t kBytesPerQuad = 3;
// What a token of a few bytes costs beside them: its vector, its block on the heap, and its place in
// what is kept of the list, which has the bytes once more.
constexpr std::size_t kTokenOverhead = sizeof(std::vector<char>) + 32 + sizeof(std::size_t);

} // namespace

std::vector<char>& LineScan::append(std::size_t size) {
    m_tokenMemory.add(2 * size + kTokenOverhead);
    return mylist.emplace_back();
}

void LineScan::addToList(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    append(size).assign(text, text + size);
}

void LineScan::addHexToList(char* text) {
    const std::size_t length = strnlen(text, kMaxHexCharacters);
    std::vector<char>& bytes = append(length / 2);
    bool high = true;
    int value = 0;
    for (std::size_t at = 0; at < length; ++at) {
        const int digit = hexDigit(text[at]);
        if (digit < 0)
            continue;
        value += high ? digit * 16 : digit;
        high = !high;
        if (high) {
            bytes.push_back(static_cast<char>(value));
            value = 0;
        }
    }
}

void LineScan::addBase64ToList(const char* text) {
    addBase64Run(text);
}

std::size_t LineScan::addBase64Run(std::string_view text) {
    const std::size_t length = base64RunLength(text.data(), text.size());
    if (length == 0)
        return 0;
    const std::size_t size = length / kCharactersPerQuad * kBytesPerQuad;
    std::vector<char>& token = append(size);
    token.resize(size);
    auto* const bytes = reinterpret_cast<unsigned char*>(token.data());
    const std::size_t quads = decodeBase64Quads(text.data(), length, bytes);
    const std::size_t known = quads * kCharactersPerQuad;
    if (known < length) {
        const std::size_t decoded = quads * kBytesPerQuad;
        const std::string rest(text.substr(known, length - known));
        System::decodeBase64(rest.c_str(), bytes + decoded, size - decoded);
    }
    return length;
}

void LineScan::echo(const char* text, std::size_t length) {
    m_echoMemory.add(length);
    echoes.append(text, length);
}

void LineScan::echoLength(const char* header, int length) {
    const std::string text = string_format("len %s: %d\n", header, length);
    echo(text.data(), text.size());
}

void LineScan::clearList() {
    mylist.clear();
    isNewList = true;
}
