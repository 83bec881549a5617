#include "support/ExchangeExamples.h"

#include <string_view>

#include "support/Daemon.h"

namespace {

struct Replacement {
    std::string_view name;
    std::string_view text;
};

constexpr Replacement kBytes[] = {{"<STX>", "\x02"}, {"<ETX>", "\x03"}, {"<LF>", "\n"}};
constexpr Replacement kPatterns[] = {{"{build}", kBuildStampPattern}, {"{number}", "[0-9]+"}};

template <std::size_t count>
const Replacement* replacementAt(const std::string& text, std::size_t at,
                                 const Replacement (&all)[count]) {
    for (const Replacement& replacement : all) {
        if (text.compare(at, replacement.name.size(), replacement.name) == 0)
            return &replacement;
    }
    return nullptr;
}

} // namespace

std::string bytesOf(const std::string& text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size();) {
        const Replacement* named = replacementAt(text, at, kBytes);
        bytes += named != nullptr ? named->text : std::string_view(&text[at], 1);
        at += named != nullptr ? named->name.size() : 1;
    }
    return bytes;
}

std::string patternOf(const std::string& text) {
    constexpr std::string_view kSpecial = R"(^$\.*+?()[]{}|)";
    std::string pattern;
    for (std::size_t at = 0; at < text.size();) {
        if (const Replacement* named = replacementAt(text, at, kPatterns); named != nullptr) {
            pattern += named->text;
            at += named->name.size();
            continue;
        }
        if (const Replacement* named = replacementAt(text, at, kBytes); named != nullptr) {
            pattern += named->text;
            at += named->name.size();
            continue;
        }
        if (kSpecial.find(text[at]) != std::string_view::npos)
            pattern += '\\';
        pattern += text[at++];
    }
    return pattern;
}
