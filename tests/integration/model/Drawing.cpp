#include "model/Drawing.h"

#include <sstream>

#include "model/Answer.h"
#include "model/Notation.h"

namespace {

constexpr const char* kOddNumbers[] = {
    "-1",  "x",          "0",          "1",          "2",          "255",         "256",
    "257", "2147483647", "2147483648", "4294967295", "4294967296", "99999999999", "0x",
    "08",  "1.5",        " 7",         "+7",         "7x",         "-2147483649"};

void mangleWords(Dice& dice, std::vector<Word>& words) {
    const std::size_t at = dice.below(static_cast<std::uint32_t>(words.size()));
    switch (dice.below(4)) {
        case 0:
            words.push_back(Word::text(dice.oneOf(kOddNumbers)));
            return;
        case 1:
            if (at != 0)
                words.erase(words.begin() + static_cast<std::ptrdiff_t>(at));
            return;
        default:
            if (at != 0 && words[at].notation == Word::Notation::Text)
                words[at].bytes = dice.oneOf(kOddNumbers);
    }
}

void mangleFrame(Dice& dice, std::string& frame) {
    constexpr std::size_t kLongest = 254;
    const auto size = static_cast<std::uint32_t>(frame.size());
    switch (dice.below(4)) {
        case 0:
            frame.resize(dice.below(size));
            return;
        case 1:
            frame.append(dice.bytes(dice.between(1, 3)));
            frame.resize(std::min(frame.size(), kLongest));
            return;
        default:
            if (size > 1)
                frame[dice.between(1, size - 1)] = static_cast<char>(dice.below(256));
    }
}

} // namespace

Word Drawing::number(std::uint32_t value) const {
    if (dice.oneIn(4))
        return Word::text(formatted("0x%X", value));
    return Word::text(formatted(dice.oneIn(8) ? "0%o" : "%u", value));
}

Word Drawing::data(const std::string& bytes) const {
    return dice.oneIn(4) ? Word::base64(bytes) : Word::hex(bytes);
}

std::uint32_t Drawing::edgeOr(std::uint32_t number, std::vector<std::uint32_t> edges) const {
    return dice.oneIn(3) ? dice.oneOf(edges) : number;
}

Request Drawing::line(const std::string& words, std::vector<Word> more) const {
    std::vector<Word> all;
    std::istringstream stream(words);
    for (std::string word; stream >> word;)
        all.push_back(Word::text(word));
    all.insert(all.end(), more.begin(), more.end());
    return Request::ofLine(all);
}

Request mangled(Dice& dice, Request request) {
    if (request.isFrame())
        mangleFrame(dice, request.frame);
    else
        mangleWords(dice, request.words);
    return request;
}
