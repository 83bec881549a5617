#include "client/forms/FormRow.h"

#include <algorithm>
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
    while (!text.empty())
        words.push_back(takeWord(text));
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
    std::string_view parts = frame;
    takeWord(parts); // the id
    std::string rest;
    while (!parts.empty()) {
        const std::string_view part = takeWord(parts);
        if (isByte(part)) {
            rest += oneByte(byteOf(part));
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
    return {requestFrame(static_cast<unsigned char>(id()), rest), answer()};
}

} // namespace station
