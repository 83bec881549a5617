#include "PlainScanner.h"

#include <netinet/in.h>
#include <resolv.h>

#include <algorithm>

namespace {

constexpr char kStx = '\x02';
constexpr char kEtx = '\x03';
constexpr std::string_view kParameter = "#<parameter>";
constexpr std::string_view kFrame = "#<frame>";
constexpr std::size_t kMostHexadecimal = 2048;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool isAlphanumeric(char character) {
    return isDigit(character) || isLetter(character);
}

bool isHexadecimal(char character) {
    return isDigit(character) || (character >= 'A' && character <= 'F') ||
           (character >= 'a' && character <= 'f');
}

bool isControl(char character) {
    return character == kStx || character == kEtx || character == '\n';
}

bool beginsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

template <typename IsPart>
std::size_t runLength(std::string_view text, IsPart isPart) {
    std::size_t length = 0;
    while (length < text.size() && isPart(text[length]))
        ++length;
    return length;
}

/// How many characters of "#<frame>", digits and a colon `text` begins with; 0 when it does not.
std::size_t headerLength(std::string_view text) {
    if (!beginsWith(text, kFrame))
        return 0;
    const std::size_t digits = runLength(text.substr(kFrame.size()), isHexadecimal);
    const std::size_t colon = kFrame.size() + digits;
    return digits > 0 && colon < text.size() && text[colon] == ':' ? colon + 1 : 0;
}

std::vector<char> bytesOfHexadecimal(std::string_view text) {
    std::string digits(text.substr(0, kMostHexadecimal));
    digits.erase(std::remove_if(digits.begin(), digits.end(),
                                [](char character) { return !isHexadecimal(character); }),
                 digits.end());
    std::vector<char> bytes;
    for (std::size_t at = 0; at + 2 <= digits.size(); at += 2)
        bytes.push_back(static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16)));
    return bytes;
}

std::vector<char> bytesOfBase64(std::string_view text) {
    std::vector<char> bytes(text.size() / 4 * 3);
    ::b64_pton(std::string(text).c_str(), reinterpret_cast<unsigned char*>(bytes.data()), bytes.size());
    return bytes;
}

} // namespace

void PlainScanner::scan(std::string_view line) {
    m_echo.clear();
    m_rest = line.substr(0, line.find('\0'));
    while (!m_rest.empty())
        step();
}

/// Newline, STX and ETX mean the same everywhere, but for what takes more than them.
void PlainScanner::step() {
    const char character = m_rest.front();
    if (!isControl(character)) {
        switch (m_state) {
            case State::Outside:
                return scanOutside();
            case State::Word:
                return scanWord();
            case State::Arguments:
                return scanArguments();
            case State::Hexadecimal:
                return scanHexadecimal();
            case State::Base64:
                return scanBase64();
            case State::Text:
                return scanText();
        }
    }
    take(1);
    if (character == kStx)
        m_state = State::Word;
    if (character == kEtx) {
        m_state = State::Outside;
        m_rest = {};
    }
}

void PlainScanner::scanOutside() {
    if (beginsWith(m_rest, kParameter)) {
        const std::size_t controls = runLength(m_rest.substr(kParameter.size()), isControl);
        if (controls > 0)
            return addText(take(kParameter.size() + controls));
    }
    if (const std::size_t length = headerLength(m_rest); length > 0) {
        const std::string_view header = take(length);
        m_echo.append("len ").append(header.substr(3)).append(": 0\n");
        m_state = State::Word;
        return;
    }
    const bool isFrame =
        beginsWith(m_rest, kFrame) && m_rest.size() > kFrame.size() && m_rest[kFrame.size()] != '\n';
    take(isFrame ? kFrame.size() + 1 : 1);
}

void PlainScanner::scanWord() {
    const std::string_view word = takeRun(isAlphanumeric);
    if (word.empty())
        return echoOne();
    m_tokens.clear();
    addText(word);
    m_state = State::Arguments;
}

void PlainScanner::scanArguments() {
    if (takePrefix("hex(")) {
        m_state = State::Hexadecimal;
        return;
    }
    if (takePrefix("base64(")) {
        m_state = State::Base64;
        return;
    }
    const std::string_view word =
        takeRun([](char character) { return isAlphanumeric(character) || character == '_'; });
    if (!word.empty())
        return addText(word);
    if (takePrefix("\""))
        m_state = State::Text;
    else if (!takePrefix(")") && !takePrefix(" "))
        echoOne();
}

void PlainScanner::scanHexadecimal() {
    const std::string_view run = takeRun([](char character) {
        return isHexadecimal(character) || character == ' ' || character == '\t';
    });
    if (!run.empty())
        m_tokens.push_back(bytesOfHexadecimal(run));
    else if (takePrefix(")"))
        m_state = State::Arguments;
    else
        echoOne();
}

void PlainScanner::scanBase64() {
    const std::string_view run = takeRun([](char character) {
        return isAlphanumeric(character) || character == '+' || character == '/' || character == '=';
    });
    if (!run.empty())
        m_tokens.push_back(bytesOfBase64(run));
    else if (takePrefix(")"))
        m_state = State::Arguments;
    else
        echoOne();
}

void PlainScanner::scanText() {
    const std::string_view run =
        takeRun([](char character) { return character != '"' && !isControl(character); });
    if (!run.empty())
        return addText(run);
    take(1);
    m_state = State::Arguments;
}

std::string_view PlainScanner::take(std::size_t count) {
    const std::string_view taken = m_rest.substr(0, count);
    m_rest.remove_prefix(count);
    return taken;
}

template <typename IsPart>
std::string_view PlainScanner::takeRun(IsPart isPart) {
    return take(runLength(m_rest, isPart));
}

bool PlainScanner::takePrefix(std::string_view prefix) {
    if (!beginsWith(m_rest, prefix))
        return false;
    take(prefix.size());
    return true;
}

void PlainScanner::echoOne() {
    m_echo += take(1);
}

void PlainScanner::addText(std::string_view text) {
    m_tokens.emplace_back(text.begin(), text.end()).push_back('\0');
}
