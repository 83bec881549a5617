#include "support/RequestMaker.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "client/BinaryRequest.h"
#include "client/Failure.h"
#include "client/Hex.h"
#include "client/Quoting.h"
#include "client/forms/BinaryForm.h"
#include "wire/Catalogue.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

/// Forms that only lines have.
constexpr std::string_view kLineForms[] = {"status 03", "status 04",
                                           "memory read 8bitcrc COUNT ADDRESS"};

/// What stands for a field; numbers stand for the others.
struct Values {
    std::string_view field;
    std::vector<std::string_view> values;
};
const Values kValues[] = {
    {"WIDTH", {"8bit", "16bit", "32bit", "8bitcrc"}},
    {"TEXT",
     {"echo", "\"\"", "exit 3", "exit 256", "signal 9", "sleep", "stay", "shut", "lost", "showimage",
      "a;b\\c%s%n"}},
    {"TYPE", {"0", "1", "176", "177", "178", "179", "180", "2"}},
    {"ID", {"0", "1", "2"}},
    {"BUS", {"0", "0", "0", "1"}},
    {"N", {"0", "1", "2", "3", "240", "241", "20", "21"}},
    {"BAUD", {"9600", "115200", "0", "12345"}},
    {"FLAGS", {"0", "1", "4", "6", "2", "15", "255"}},
    {"ADDRESS", {"0x50", "0x48", "0x20", "0", "0x7FFFFFF", "0x8000000", "0x7FFFF00"}},
    {"BLOCK", {"0", "1", "14", "15", "16", "0xFFFFFFFF"}},
    {"OUTPUT", {"0", "1", "2", "4"}},
    {"PICTURE", {"0", "1", "2", "3"}},
    {"INPUT", {"0", "2", "3", "1"}},
    {"LEVEL", {"0", "1", "x"}},
    {"VALUE", {"00", "01", "0064", "0190", "02"}},
    {"LENGTH", {"0", "3", "4", "5", "100", "4096", "0x8000000"}},
    {"OFFSET", {"0", "1", "4096", "0x7FFFFFF", "0x8000000", "0x7FFF000"}},
};
constexpr std::string_view kNumbers[] = {"0",   "1",   "2",   "3",          "4",   "5",         "7",
                                         "8",   "16",  "242", "243",        "247", "63",        "64",
                                         "255", "256", "-1",  "0x10",       "010", "251",       "1000",
                                         "x",   "62",  "253", "4294967295", "9",   "0x80000000"};

std::vector<std::string> splitAtBlanks(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        words.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

std::vector<std::string_view> allForms() {
    std::vector<std::string_view> forms(std::begin(kLineForms), std::end(kLineForms));
    for (const std::string_view name : station::binaryFormNames())
        for (const std::string_view usage : station::binaryUsages(name))
            forms.push_back(usage);
    return forms;
}

} // namespace

std::vector<std::string> RequestMaker::words() {
    static const std::vector<std::string_view> forms = allForms();
    std::vector<std::string> made;
    for (std::string word : splitAtBlanks(forms[below(forms.size())])) {
        if (word.front() == '[' && below(2) == 0)
            break;
        word.erase(std::remove_if(word.begin(), word.end(), [](char c) { return c == '[' || c == ']'; }),
                   word.end());
        if (const std::size_t bar = word.find('|'); bar != std::string::npos)
            word = below(2) == 0 ? word.substr(0, bar) : word.substr(bar + 1);
        made.push_back(word.front() >= 'A' && word.front() <= 'Z' ? argument(word) : word);
    }
    return made;
}

std::string RequestMaker::line() {
    std::string text;
    for (const std::string& word : words()) {
        text += text.empty() ? "" : " ";
        try {
            station::appendQuoted(text, word);
        } catch (const station::Failure&) {
            text += word;
        }
    }
    return text;
}

std::string RequestMaker::frame() {
    if (below(5) == 0)
        return anyFrame();
    std::vector<std::string> arguments = words();
    const std::string name = arguments.front();
    arguments.erase(arguments.begin());
    try {
        return station::BinaryRequest::encode(name, arguments).bytes();
    } catch (const station::Failure&) {
        return anyFrame();
    }
}

std::string RequestMaker::argument(const std::string& field) {
    if (field == "DATA" || below(16) == 0)
        return data();
    for (const Values& known : kValues)
        if (known.field == field && below(8) != 0)
            return std::string(known.values[below(known.values.size())]);
    return std::string(kNumbers[below(std::size(kNumbers))]);
}

std::string RequestMaker::data() {
    const std::string content = bytes(below(4) == 0 ? below(256) : below(12));
    return below(2) == 0 ? station::hexArgument(content) : station::base64Argument(content);
}

std::string RequestMaker::bytes(std::size_t count) {
    std::string made;
    while (made.size() < count)
        made += static_cast<char>(m_random());
    return made;
}

std::string RequestMaker::anyFrame() {
    const std::string_view ids = wire::kCatalogue[below(wire::kCatalogue.size())].ids;
    const std::string rest = bytes(below(16));
    return std::string{static_cast<char>(rest.size() + 2), ids[below(ids.size())]} + rest;
}

void mutate(Requests& requests, unsigned seed, std::string (RequestMaker::*make)()) {
    constexpr std::size_t kMost = 12;
    RequestMaker maker(seed);
    const auto at = static_cast<std::ptrdiff_t>(maker.below(requests.size() + 1));
    const bool isThere = at < static_cast<std::ptrdiff_t>(requests.size());
    const std::size_t choice = maker.below(6);
    if (!isThere || (choice < 2 && requests.size() < kMost)) {
        requests.insert(requests.begin() + at, (maker.*make)());
    } else if (choice == 2) {
        requests[static_cast<std::size_t>(at)] = (maker.*make)();
    } else if (choice == 3) {
        requests.erase(requests.begin() + at);
    } else {
        std::string& request = requests[static_cast<std::size_t>(at)];
        const std::size_t size = request.size();
        request.resize(size + 16);
        request.resize(
            LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(request.data()), size, request.size()));
    }
}
