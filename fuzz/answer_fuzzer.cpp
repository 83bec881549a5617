// The station's decoder of lines, and what it makes of them: in whatever pieces the bytes come, they are
// the same texts, and end at the same place.

#include <optional>
#include <string>
#include <vector>

#include "Expect.h"
#include "Input.h"
#include "client/Answer.h"
#include "client/AnswerDecoder.h"
#include "client/Failure.h"
#include "support/Pieces.h"
#include "wire/Line.h"

namespace {

using station::Failure;

struct Decoded {
    std::vector<std::string> texts;
    bool isMalformed = false;
    bool isMidLine = false;
};

/// Looks at all bytes at once.
Decoded expected(std::string_view bytes, std::size_t longest) {
    constexpr std::string_view kOpening = wire::kAnswerBegin;
    constexpr std::string_view kEnding = wire::kLineEnd;
    Decoded decoded;
    for (;;) {
        const std::string_view opening = bytes.substr(0, kOpening.size());
        if (opening != kOpening.substr(0, opening.size())) {
            decoded.isMalformed = true;
            return decoded;
        }
        const std::size_t end = bytes.find(kEnding, kOpening.size());
        const bool isWhole = end != std::string_view::npos;
        std::string_view text = bytes.substr(opening.size(), isWhole ? end - opening.size() : end);
        // It may be the beginning of the ending.
        if (!isWhole && !text.empty() && text.back() == kEnding.front())
            text.remove_suffix(1);
        decoded.isMalformed = text.size() > longest;
        if (decoded.isMalformed || !isWhole) {
            decoded.isMidLine = !bytes.empty();
            return decoded;
        }
        decoded.texts.emplace_back(text);
        bytes.remove_prefix(end + kEnding.size());
    }
}

void takeAll(station::AnswerDecoder& decoder, Decoded& decoded) {
    try {
        while (auto text = decoder.next())
            decoded.texts.push_back(*text);
    } catch (const Failure& failure) {
        expect(failure.kind() == Failure::Kind::MalformedAnswer, "What is malformed is called so");
        decoded.isMalformed = true;
    }
}

Decoded decode(const std::vector<std::string_view>& parts, std::size_t longest) {
    station::AnswerDecoder decoder(longest);
    Decoded decoded;
    for (const std::string_view part : parts) {
        decoder.feed(part);
        const bool wasMalformed = decoded.isMalformed;
        const std::size_t before = decoded.texts.size();
        takeAll(decoder, decoded);
        expect(!wasMalformed || decoded.texts.size() == before,
               "There is no way back from a malformed line");
    }
    decoded.isMidLine = decoder.isMidLine();
    return decoded;
}

void compare(const Decoded& expected, const Decoded& decoded) {
    expectSame<std::size_t>(expected.texts.size(), decoded.texts.size(), "the number of texts");
    for (std::size_t at = 0; at < expected.texts.size(); ++at)
        expectSame(expected.texts[at], decoded.texts[at], "a text");
    expectSame<bool>(expected.isMalformed, decoded.isMalformed, "whether it is malformed");
    if (!expected.isMalformed)
        expectSame<bool>(expected.isMidLine, decoded.isMidLine, "whether it ends in a line");
}

/// A line that is taken for something says just that.
void readLine(const std::string& line) {
    if (const auto message = station::infoMessage(line))
        expectSame(line, "Info \"" + *message + "\"", "a message's line");
    if (const auto text = station::greeting(line))
        expectSame(line, "Info " + *text, "a greeting's line");
    const std::string name = line.substr(0, line.find(' '));
    try {
        const station::Answer answer = station::parseAnswer(name, line);
        if (!line.empty())
            expectSame(line, name + " " + answer.text, "an answer's line");
        if (answer.isRefusal())
            expectSame(station::refusalText(answer.code), answer.text, "a refusal's text");
    } catch (const Failure& failure) {
        expect(failure.kind() == Failure::Kind::MalformedAnswer, "What is malformed is called so");
    }
}

} // namespace

/// The longest text that is taken, how the bytes are cut, and the bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t longest = input.byte();
    const unsigned cut = input.byte();
    const std::string_view bytes = input.rest();
    const Decoded whole = expected(bytes, longest);
    compare(whole, decode({bytes}, longest));
    compare(whole, decode(pieces(bytes, cut), longest));
    for (const std::string& text : whole.texts)
        readLine(text);
    return 0;
}
