// What everything else on the wire is made of: numbers in both byte orders, hexadecimal digits and the
// framing of lines, against what they are by definition.

#include <string>
#include <vector>

#include "Expect.h"
#include "Input.h"
#include "wire/BigEndian.h"
#include "wire/HexDigit.h"
#include "wire/Line.h"
#include "wire/LittleEndian.h"

namespace {

using Bytes = std::vector<unsigned char>;

/// The number that bytes are, the most significant one first.
std::uint32_t valueOf(const Bytes& bytes) {
    std::uint32_t value = 0;
    for (const unsigned char byte : bytes)
        value = value * 256 + byte;
    return value;
}

Bytes part(const Bytes& bytes, std::size_t at, std::size_t count) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

Bytes reversed(const Bytes& bytes) {
    return {bytes.rbegin(), bytes.rend()};
}

void bigEndian(const Bytes& frame, std::size_t at) {
    expectSame(valueOf(part(frame, at, 2)), std::uint32_t{bigEndian16(frame, at)}, "two bytes");
    expectSame(valueOf(part(frame, at, 4)), bigEndian32(frame, at), "four bytes");
    Bytes copy = frame;
    putBigEndian16(copy, at, bigEndian16(frame, at));
    putBigEndian32(copy, at, bigEndian32(frame, at));
    expect(copy == frame, "What is written where it was read changes nothing");
}

void littleEndian(const Bytes& frame, std::size_t at) {
    const unsigned char* const bytes = frame.data() + at;
    const std::string_view text(reinterpret_cast<const char*>(frame.data()), frame.size());
    const std::uint16_t two = littleEndian16(bytes);
    const std::uint32_t four = littleEndian32(bytes);
    expectSame(valueOf(reversed(part(frame, at, 2))), std::uint32_t{two}, "two bytes, reversed");
    expectSame(valueOf(reversed(part(frame, at, 4))), four, "four bytes, reversed");
    expectSame(two, littleEndian16(text, at), "two bytes of a text");
    expectSame(four, littleEndian32(text, at), "four bytes of a text");

    Bytes put(6);
    putLittleEndian16(put.data(), two);
    putLittleEndian32(put.data() + 2, four);
    Bytes appended;
    appendLittleEndian16(appended, two);
    appendLittleEndian32(appended, four);
    expect(put == appended, "Numbers are put as they are appended");
    expect(part(put, 0, 2) == part(frame, at, 2), "Two bytes come back");
    expect(part(put, 2, 4) == part(frame, at, 4), "Four bytes come back");
}

void hexadecimalDigit(char character) {
    const std::string_view digits = "0123456789abcdef0123456789ABCDEF";
    const std::size_t position = digits.find(character);
    const int expected = position == std::string_view::npos ? -1 : static_cast<int>(position % 16);
    expectSame(expected, hexDigit(character), "the digit");
}

void lines(const std::string& before, const std::string& text) {
    const std::string answer = "\x02#" + text + "\x03\n";
    std::string line = before;
    wire::appendRequest(line, text);
    expectSame(before + "\x02" + text + "\x03\n", line, "the request");
    line = before;
    wire::appendAnswer(line, text);
    expectSame(before + answer, line, "the appended answer");
    expectSame(answer, wire::answerLine(text), "the answer");
    expectSame(answer.size(), text.size() + wire::kAnswerFraming, "its length");
}

} // namespace

/// A position, and then bytes of which at least four follow it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLongest = 4;
    Input input(data, size);
    const std::size_t wanted = input.byte();
    const std::string_view rest = input.rest();
    if (rest.size() < kLongest)
        return 0;
    const std::size_t at = wanted % (rest.size() - kLongest + 1);
    const Bytes frame(rest.begin(), rest.end());
    bigEndian(frame, at);
    littleEndian(frame, at);
    for (const char character : rest)
        hexadecimalDigit(character);
    lines(std::string(rest.substr(0, at)), std::string(rest.substr(at)));
    return 0;
}
