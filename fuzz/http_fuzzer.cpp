// The detector of web browsers: its verdict on a connection's first bytes is that of a look at all of
// them at once, and does not depend on how they were read.

#include <string>

#include "Expect.h"
#include "Input.h"
#include "frontends/HttpRequestDetector.h"

namespace {

using Verdict = HttpRequestDetector::Verdict;

constexpr std::string_view kVersion = "HTTP/";

bool isMethodCharacter(char character) {
    constexpr std::string_view kCharacters =
        "!#$%&'*+-.^_`|~0123456789"
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    return kCharacters.find(character) != std::string_view::npos;
}

bool isTargetCharacter(char character) {
    return static_cast<unsigned char>(character) > ' ' && character != '\x7F';
}

/// Takes what `text` begins with of such characters, and a space behind them. Not when something else
/// stands there, or the space at the beginning.
template <typename IsPart>
Verdict takePart(std::string_view& text, IsPart isPart) {
    std::size_t length = 0;
    while (length < text.size() && isPart(text[length]))
        ++length;
    if (length == text.size())
        return HttpRequestDetector::Undecided;
    if (length == 0 || text[length] != ' ')
        return HttpRequestDetector::Harmless;
    text.remove_prefix(length + 1);
    return HttpRequestDetector::HttpRequest;
}

/// RFC 9112, section 3: a method, a space, a target, a space and the version.
Verdict verdictOn(std::string_view text) {
    if (const Verdict verdict = takePart(text, isMethodCharacter);
        verdict != HttpRequestDetector::HttpRequest)
        return verdict;
    if (const Verdict verdict = takePart(text, isTargetCharacter);
        verdict != HttpRequestDetector::HttpRequest)
        return verdict;
    if (text.substr(0, kVersion.size()) == kVersion)
        return HttpRequestDetector::HttpRequest;
    return kVersion.substr(0, text.size()) == text ? HttpRequestDetector::Undecided
                                                   : HttpRequestDetector::Harmless;
}

} // namespace

/// Of each read, its length in one byte, and then its bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    HttpRequestDetector detector;
    std::string received;
    while (!input.isEmpty()) {
        const std::string_view read = input.bytes(input.byte());
        received += read;
        expectSame<int>(verdictOn(received), detector.feed(read.data(), read.size()), "the verdict");
    }
    return 0;
}
