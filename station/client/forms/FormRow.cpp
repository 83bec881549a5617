#include "client/forms/FormRow.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

#include "client/RequestFrame.h"
#include "client/forms/Bytes.h"
#include "client/forms/Refusal.h"

namespace station {

namespace {

constexpr std::string_view kMore = "...";
constexpr std::string_view kFourBytes = ":4";
constexpr std::string_view kLevel = ":level";

// A port's attributes with its level high, and low.
constexpr unsigned kHighLevel = 0x04;
constexpr unsigned kLowLevel = 0x00;

std::vector<std::string_view> wordsOf(std::string_view text) {
    std::vector<std::string_view> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

/// What stands behind the command's name.
struct Shape {
    std::vector<std::string_view> words;
    bool mayBeMore = false;

    explicit Shape(std::string_view usage) : words(wordsOf(usage)) {
        words.erase(words.begin());
        if (!words.empty() && words.back() == kMore) {
            words.pop_back();
            mayBeMore = true;
        }
    }
};

bool isField(std::string_view word) {
    return word.front() >= 'A' && word.front() <= 'Z';
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::optional<unsigned> byteOf(std::string_view digits) {
    constexpr std::size_t kDigits = 2;
    unsigned byte = 0;
    const char* const end = digits.data() + digits.size();
    if (digits.size() != kDigits || std::from_chars(digits.data(), end, byte, 16).ptr != end)
        return std::nullopt;
    return byte;
}

/// The unit looks at the first character only.
unsigned levelOf(const CommandArguments& arguments, std::size_t at, const std::string& command) {
    if (arguments.beginsWith(at, "1"))
        return kHighLevel;
    if (arguments.beginsWith(at, "0"))
        return kLowLevel;
    refuseForm(command + " takes the level 0 or 1, and not '" + std::string(arguments.text(at)) + "'");
}

} // namespace

bool FormRow::takes(const CommandArguments& arguments) const {
    const Shape shape(usage);
    const std::size_t count = shape.words.size();
    if (arguments.size() < count || (arguments.size() > count && !shape.mayBeMore))
        return false;
    for (std::size_t at = 0; at < count; ++at)
        if (!isField(shape.words[at]) && !arguments.beginsWith(at, shape.words[at]))
            return false;
    return true;
}

BinaryForm FormRow::form(const CommandArguments& arguments) const {
    const Shape shape(usage);
    std::vector<std::string_view> parts = wordsOf(frame);
    const std::string_view idPart = parts.front();
    const auto id =
        static_cast<unsigned char>(byteOf(idPart).value_or(static_cast<unsigned char>(idPart.front())));
    parts.erase(parts.begin());
    std::string rest;
    for (const std::string_view part : parts) {
        if (const auto byte = byteOf(part)) {
            rest += oneByte(*byte);
            continue;
        }
        const std::string field(part.substr(0, part.find(':')));
        const auto at = static_cast<std::size_t>(
            std::find(shape.words.begin(), shape.words.end(), field) - shape.words.begin());
        if (endsWith(part, kFourBytes))
            rest += fourBytes(arguments.word(at, field.c_str()));
        else if (endsWith(part, kLevel))
            rest += oneByte(
                levelOf(arguments, at, std::string(name()) + ' ' + std::string(shape.words.front())));
        else
            rest += oneByte(arguments.byte(at, field.c_str()));
    }
    return {requestFrame(id, rest), answer()};
}

} // namespace station
