#pragma once

#include <cstddef>

/// Tells from a connection's first bytes whether a web browser is talking. A page in a browser on the
/// same machine can make it send a request with a body of the page's choice to any local port, and a
/// body may well hold a command; what it cannot do is leave the request line (RFC 9112, section 3) out.
/// No I/O; one thread at a time.
class HttpRequestDetector {
public:
    enum Verdict {
        Undecided, ///< a request line so far, but not all of it has come
        Harmless,  ///< not a request line
        HttpRequest
    };

    /// Takes further bytes of the connection. A verdict once reached stays.
    Verdict feed(const char* bytes, std::size_t count);

private:
    enum Position { BeforeMethod, InMethod, BeforeTarget, InTarget, InVersion };

    Verdict take(unsigned char character);

    Position m_position = BeforeMethod;
    std::size_t m_versionLength = 0;
    Verdict m_verdict = Undecided;
};
