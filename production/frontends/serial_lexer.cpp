#include "frontends/serial_lexer.h"

#include <cstring>
#include <string>
#include <utility>

#include "core/HexDigit.h"
#include "core/MemoryGuard.h"
#include "core/StringFormat.h"
#include "frontends/Base64Quads.h"
#include "platform/Base64.h"
#include "platform/Memory.h"

namespace {

constexpr std::size_t kMaxHexCharacters = 2048;
constexpr std::size_t kCharactersPerQuad = 4;
constexpr std::size_t kBytesPerQuad = 3;
// What a token of a few bytes costs beside them: its vector and its block on the heap. It counts twice,
// since the list is copied before it is used.
constexpr std::size_t kTokenOverhead = 2 * (sizeof(std::vector<char>) + 32);

// A list that was once longer gives its memory back.
constexpr std::size_t kKeptTokens = 1024;

MemoryGuard tokenMemory;
MemoryGuard echoMemory;
std::string echoes;

std::vector<char>& append(std::size_t size) {
    tokenMemory.add(2 * size + kTokenOverhead);
    return mylist.emplace_back();
}

} // namespace

std::vector<std::vector<char>> mylist;

void addToList(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    append(size).assign(text, text + size);
}

void addHexToList(char* text) {
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

void addBase64ToList(const char* text) {
    addBase64Run(text);
}

std::size_t addBase64Run(std::string_view text) {
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

void printList() {}

void echo(const char* text, std::size_t length) {
    echoMemory.add(length);
    echoes.append(text, length);
}

void echoLength(const char* header, int length) {
    const std::string text = string_format("len %s: %d\n", header, length);
    echo(text.data(), text.size());
}

std::string takeEchoes() {
    return std::exchange(echoes, {});
}

void clearList() {
    if (mylist.capacity() <= kKeptTokens) {
        mylist.clear();
        return;
    }
    std::vector<std::vector<char>>().swap(mylist);
    System::returnFreedMemory();
}
