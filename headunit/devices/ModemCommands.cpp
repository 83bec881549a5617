#include "devices/ModemCommands.h"

#include <algorithm>
#include <cctype>

namespace headunit {

struct ModemCommands::Request {
    const Word& word;
    Kind kind;
    std::string_view value; ///< what is to be set
};

struct ModemCommands::Word {
    std::string_view name;
    bool (ModemCommands::*handler)(const Request& request, std::string& text); ///< of all but tests
    std::string_view identity;   ///< what an identifying word answers
    std::string_view range = {}; ///< what a test answers
};

namespace {

constexpr char kManufacturer[] = "Simulated Modules";
constexpr char kModel[] = "NAD-1";
constexpr char kRevision[] = "01.00";
constexpr char kSerialNumber[] = "004999010640000"; // of the range for test equipment

constexpr std::size_t kLongestLine = 512;
constexpr char kBackspace = '\b';
constexpr char kLineEnd = '\r';
constexpr char kSevenBits = 0x7F;
constexpr int kFullFunctionality = 1;
constexpr std::size_t kShortestPin = 4;
constexpr std::size_t kLongestPin = 8;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

char upperCase(char character) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
}

/// Takes the leading characters of `text` for which `wanted` holds.
template <typename Wanted>
std::string_view takeWhile(std::string_view& text, Wanted wanted) {
    const auto end = std::find_if_not(text.begin(), text.end(), wanted);
    const std::string_view taken = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(taken.size());
    return taken;
}

/// The characters up to a semicolon that does not stand in quotation marks; takes the semicolon, too.
std::string_view takeParameter(std::string_view& text) {
    bool quoted = false;
    const std::string_view taken = takeWhile(text, [&](char character) {
        quoted ^= character == '"';
        return quoted || character != ';';
    });
    if (!text.empty())
        text.remove_prefix(1);
    return taken;
}

/// Without blanks and in upper case, but for what stands in quotation marks.
std::string normal(std::string_view body) {
    std::string text;
    bool quoted = false;
    for (const char character : body) {
        quoted ^= character == '"';
        if (quoted || character != ' ')
            text += quoted ? character : upperCase(character);
    }
    return text;
}

bool isPin(std::string_view text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    return text.size() >= kShortestPin && text.size() <= kLongestPin &&
           std::all_of(text.begin(), text.end(), isDigit);
}

} // namespace

const ModemCommands::Word ModemCommands::kWords[] = {
    {"+CGMI", &ModemCommands::identify, kManufacturer},
    {"+CGMM", &ModemCommands::identify, kModel},
    {"+CGMR", &ModemCommands::identify, kRevision},
    {"+CGSN", &ModemCommands::identify, kSerialNumber},
    {"+GMI", &ModemCommands::identify, kManufacturer},
    {"+GMM", &ModemCommands::identify, kModel},
    {"+GMR", &ModemCommands::identify, kRevision},
    {"+GSN", &ModemCommands::identify, kSerialNumber},
    {"+CSQ", &ModemCommands::signal, "", "+CSQ: (0-31,99),(99)"},
    {"+CREG", &ModemCommands::registration, "", "+CREG: (0,1)"},
    {"+CPIN", &ModemCommands::card, ""},
    {"+CFUN", &ModemCommands::functionality, "", "+CFUN: (0,1,4)"},
};

ModemCommands::Reaction ModemCommands::take(char character) {
    Reaction reaction;
    if (m_echo)
        reaction.echo = character;
    character = static_cast<char>(character & kSevenBits);
    if (character == kLineEnd) {
        reaction.answer = answerLine();
        m_line.clear();
        return reaction;
    }
    if (character == kBackspace && !m_line.empty())
        m_line.pop_back();
    if (static_cast<unsigned char>(character) < ' ')
        return reaction; // line feeds and the like mean nothing
    if (m_line.size() <= kLongestLine)
        m_line += character;
    if (m_line == "A/" || m_line == "a/") { // the one command that no line end follows
        m_line = "AT" + m_lastBody;
        reaction.answer = answerLine();
        m_line.clear();
    }
    return reaction;
}

std::string ModemCommands::answerLine() {
    const std::string_view line = m_line;
    const std::size_t start = std::min(line.find("AT"), line.find("at"));
    if (start == std::string_view::npos)
        return ""; // no command line, nothing to say
    if (line.size() > kLongestLine)
        return result(false);
    m_lastBody = line.substr(start + 2);
    std::string answer;
    const bool done = runBody(normal(m_lastBody), answer);
    return answer + result(done);
}

/// Runs one command after the other up to the first that fails.
bool ModemCommands::runBody(std::string_view body, std::string& answer) {
    while (!body.empty()) {
        if (body.front() == ';')
            body.remove_prefix(1);
        else if (!(body.front() == '+' ? runExtended(body, answer) : runBasic(body, answer)))
            return false;
    }
    return true;
}

bool ModemCommands::runBasic(std::string_view& body, std::string& answer) {
    const char letter = body.front();
    body.remove_prefix(1);
    const std::string_view number = takeWhile(body, isDigit);
    if (!number.empty() && number != "0" && number != "1")
        return false;
    const bool one = number == "1";
    switch (letter) {
        case 'E':
            m_echo = one;
            return true;
        case 'Q':
            m_quiet = one;
            return true;
        case 'V':
            m_verbose = one;
            return true;
        case 'Z':
            setDefaults();
            return !one;
        case 'I':
            if (!one)
                answer += information(std::string(kManufacturer) + "\r\n" + kModel + "\r\n" + kRevision);
            return !one;
        default:
            return false;
    }
}

bool ModemCommands::runExtended(std::string_view& body, std::string& answer) {
    std::string_view value = takeParameter(body);
    const std::string_view name = takeWhile(value, [](char c) { return c != '=' && c != '?'; });
    const auto word = std::find_if(std::begin(kWords), std::end(kWords),
                                   [&](const Word& known) { return known.name == name; });
    if (word == std::end(kWords))
        return false;
    Kind kind = Kind::set;
    if (value.empty())
        kind = Kind::execute;
    else if (value == "?")
        kind = Kind::read;
    else if (value == "=?")
        kind = Kind::test;
    else if (value.front() == '?')
        return false;
    else
        value.remove_prefix(1);
    std::string text;
    if (kind == Kind::test)
        text = word->range;
    else if (!(this->*word->handler)({*word, kind, value}, text))
        return false;
    if (!text.empty())
        answer += information(text);
    return true;
}

std::string ModemCommands::information(std::string_view text) const {
    return (m_verbose ? "\r\n" : "") + std::string(text) + "\r\n";
}

std::string ModemCommands::result(bool done) const {
    if (m_quiet)
        return "";
    if (m_verbose)
        return done ? "\r\nOK\r\n" : "\r\nERROR\r\n";
    return done ? "0\r" : "4\r";
}

bool ModemCommands::identify(const Request& request, std::string& text) {
    text = request.word.identity;
    return request.kind == Kind::execute;
}

bool ModemCommands::signal(const Request& request, std::string& text) {
    text = "+CSQ: " + std::to_string(hasRadio() ? m_signal : kUnknownSignal) + ",99";
    return request.kind == Kind::execute;
}

bool ModemCommands::registration(const Request& request, std::string& text) {
    if (request.kind == Kind::read)
        text = "+CREG: " + std::to_string(m_reportsRegistration ? 1 : 0) + "," +
               std::to_string(hasRadio() ? m_registration : 0);
    if (request.kind != Kind::set)
        return request.kind == Kind::read;
    if (request.value != "0" && request.value != "1")
        return false;
    m_reportsRegistration = request.value == "1";
    return true;
}

bool ModemCommands::card(const Request& request, std::string& text) {
    if (request.kind == Kind::set) {
        if (m_card != Card::wantsPin || !isPin(request.value))
            return false;
        m_card = Card::ready;
        return true;
    }
    if (request.kind == Kind::execute || m_card == Card::absent)
        return false;
    const char* state = m_card == Card::ready ? "READY" : "SIM PIN";
    text = std::string("+CPIN: ") + (m_card == Card::blocked ? "SIM PUK" : state);
    return true;
}

bool ModemCommands::functionality(const Request& request, std::string& text) {
    if (request.kind == Kind::read)
        text = "+CFUN: " + std::to_string(m_functionality);
    if (request.kind != Kind::set)
        return request.kind == Kind::read;
    if (request.value != "0" && request.value != "1" && request.value != "4")
        return false;
    m_functionality = request.value.front() - '0';
    return true;
}

bool ModemCommands::hasRadio() const {
    return m_functionality == kFullFunctionality;
}

bool ModemCommands::setSignal(int strength) {
    if ((strength < 0 || strength > kStrongest) && strength != kUnknownSignal)
        return false;
    m_signal = strength;
    return true;
}

bool ModemCommands::setRegistration(int state) {
    if (state < 0 || state > kLastRegistration)
        return false;
    m_registration = state;
    return true;
}

std::string ModemCommands::registrationReport() const {
    if (!m_reportsRegistration || !hasRadio())
        return "";
    return information("+CREG: " + std::to_string(m_registration));
}

void ModemCommands::setDefaults() {
    m_echo = true;
    m_quiet = false;
    m_verbose = true;
    m_reportsRegistration = false;
}

} // namespace headunit
