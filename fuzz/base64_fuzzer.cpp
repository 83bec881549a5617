// Both ways of base64 against the alphabet itself: what is encoded is what RFC 4648 says, and comes
// back; of any text at all, the quads that are decoded at once are those that the alphabet knows, and
// say what it says.

#include <string>
#include <vector>

#include "Expect.h"
#include "Input.h"
#include "frontends/Base64Quads.h"
#include "wire/Base64.h"

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using Bytes = std::vector<unsigned char>;

std::string_view asText(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Six bits for each character, most significant first; all characters are of the alphabet.
std::string bitsOf(std::string_view text) {
    std::string bits;
    for (const char character : text)
        for (int bit = 5; bit >= 0; --bit)
            bits += (kAlphabet.find(character) >> bit & 1) != 0 ? '1' : '0';
    return bits;
}

/// The whole bytes among the bits.
std::string bytesOf(const std::string& bits) {
    std::string bytes;
    for (std::size_t at = 0; at + 8 <= bits.size(); at += 8)
        bytes += static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
    return bytes;
}

void encode(std::string_view data) {
    const std::string text =
        System::encodeBase64(reinterpret_cast<const unsigned char*>(data.data()), data.size());
    const std::size_t padding = (3 - data.size() % 3) % 3;
    expectSame((data.size() + 2) / 3 * 4, text.size(), "the length of the text");
    expectSame(std::string(padding, '='), text.substr(text.size() - padding), "the padding");
    expectSame(data, bytesOf(bitsOf(text.substr(0, text.size() - padding))).substr(0, data.size()),
               "the bytes that were encoded");

    Bytes decoded(data.size() + (padding > 0 ? 1 : 0));
    expectSame(static_cast<int>(data.size()),
               System::decodeBase64(text.c_str(), decoded.data(), decoded.size()),
               "the number of decoded bytes");
    expectSame(data, asText(decoded).substr(0, data.size()), "the bytes that were decoded");
}

std::size_t knownCharacters(std::string_view text) {
    std::size_t count = 0;
    while (count < text.size() && kAlphabet.find(text[count]) != std::string_view::npos)
        ++count;
    return count;
}

void decodeQuads(std::string_view text) {
    std::size_t run = 0;
    while (run < text.size() &&
           (kAlphabet.find(text[run]) != std::string_view::npos || text[run] == '='))
        ++run;
    expectSame(run, base64RunLength(text.data(), text.size()), "the length of the run");

    const std::size_t quads = knownCharacters(text) / 4;
    Bytes bytes(quads * 3); // there is room for no more
    expectSame(quads, decodeBase64Quads(text.data(), text.size(), bytes.data()), "the number of quads");
    expectSame(bytesOf(bitsOf(text.substr(0, quads * 4))), asText(bytes), "the decoded quads");
}

/// The system's decoder, which gets texts that end with a zero byte, and room that may be too small.
void decode(std::string_view text, std::size_t room) {
    const std::string line(text.substr(0, text.find('\0')));
    Bytes bytes(room, 0xEE);
    const int count = System::decodeBase64(line.c_str(), bytes.data(), bytes.size());
    expect(count >= -1 && count <= static_cast<int>(room), "What was decoded fits");
    if (count < 0)
        return;
    encode(asText(bytes).substr(0, static_cast<std::size_t>(count)));
}

} // namespace

/// How much room a decoder gets, and then bytes that are encoded and decoded.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t room = input.word() + std::size_t{1}; // without any, a decoder only counts
    const std::string_view bytes = input.rest();
    encode(bytes);
    decodeQuads(bytes);
    decode(bytes, room);
    return 0;
}
