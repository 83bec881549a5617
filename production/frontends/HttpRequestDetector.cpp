#include "frontends/HttpRequestDetector.h"

#include <cstring>

namespace {

constexpr char kVersion[] = "HTTP/";

bool isTokenCharacter(unsigned char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') ||
           (character != 0 && std::strchr("!#$%&'*+-.^_`|~", character) != nullptr);
}

bool isTargetCharacter(unsigned char character) {
    return character > ' ' && character != 0x7F;
}

} // namespace

HttpRequestDetector::Verdict HttpRequestDetector::feed(const char* bytes, std::size_t count) {
    for (std::size_t at = 0; at < count && m_verdict == Undecided; ++at)
        m_verdict = take(static_cast<unsigned char>(bytes[at]));
    return m_verdict;
}

HttpRequestDetector::Verdict HttpRequestDetector::take(unsigned char character) {
    switch (m_position) {
        case BeforeMethod:
        case InMethod:
            if (character == ' ' && m_position == InMethod) {
                m_position = BeforeTarget;
                return Undecided;
            }
            m_position = InMethod;
            return isTokenCharacter(character) ? Undecided : Harmless;
        case BeforeTarget:
            m_position = InTarget;
            return isTargetCharacter(character) ? Undecided : Harmless;
        case InTarget:
            if (character == ' ') {
                m_position = InVersion;
                return Undecided;
            }
            return isTargetCharacter(character) ? Undecided : Harmless;
        case InVersion:
            if (character != static_cast<unsigned char>(kVersion[m_versionLength]))
                return Harmless;
            return ++m_versionLength == sizeof kVersion - 1 ? HttpRequest : Undecided;
    }
    return Harmless;
}
