#include "support/Pattern.h"

#include <regex.h>

#include <stdexcept>

namespace {

class Compiled {
public:
    explicit Compiled(const std::string& pattern) {
        if (::regcomp(&m_pattern, pattern.c_str(), REG_EXTENDED) != 0)
            throw std::invalid_argument("no pattern: " + pattern);
    }
    Compiled(const Compiled&) = delete;
    Compiled& operator=(const Compiled&) = delete;
    ~Compiled() { ::regfree(&m_pattern); }

    bool find(const char* text, regmatch_t& match) const {
        return ::regexec(&m_pattern, text, 1, &match, 0) == 0;
    }

private:
    regex_t m_pattern{};
};

} // namespace

bool matchesWhole(const std::string& text, const std::string& pattern) {
    regmatch_t match{};
    return Compiled("^(" + pattern + ")$").find(text.c_str(), match) &&
           static_cast<std::size_t>(match.rm_eo) == text.size();
}

std::string replaceAll(const std::string& text, const std::string& pattern,
                       const std::string& replacement) {
    const Compiled compiled(pattern);
    std::string result;
    const char* rest = text.c_str();
    regmatch_t match{};
    while (compiled.find(rest, match) && match.rm_eo > match.rm_so) {
        result.append(rest, static_cast<std::size_t>(match.rm_so));
        result += replacement;
        rest += match.rm_eo;
    }
    return result + rest;
}
