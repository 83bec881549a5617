#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The language of command lines once more, written by hand from its rules and to be read beside them:
/// what the generated scanner is compared with. At each character the longest of the matches counts; of
/// equal ones the first.
class PlainScanner {
public:
    using Tokens = std::vector<std::vector<char>>;

    /// Scans one line, up to its first zero byte or the end of a command. What it leaves is where the
    /// next one begins.
    void scan(std::string_view line);

    const Tokens& tokens() const { return m_tokens; }
    /// What went to standard output since the last `scan` began.
    const std::string& echo() const { return m_echo; }

private:
    enum class State { Outside, Word, Arguments, Hexadecimal, Base64, Text };

    void step();
    void scanOutside();
    void scanWord();
    void scanArguments();
    void scanHexadecimal();
    void scanBase64();
    void scanText();

    std::string_view take(std::size_t count);
    template <typename IsPart>
    std::string_view takeRun(IsPart isPart);
    bool takePrefix(std::string_view prefix);
    void echoOne();
    void addText(std::string_view text);

    std::string_view m_rest;
    State m_state = State::Outside;
    Tokens m_tokens;
    std::string m_echo;
};
