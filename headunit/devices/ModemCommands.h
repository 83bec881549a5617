#pragma once

#include <string>
#include <string_view>

namespace headunit {

/// The command language of a telephone module (ITU-T V.250, 3GPP TS 27.007), without any I/O: characters
/// in, echo and answers out. It knows
///
///     ATE ATI ATQ ATV ATZ A/      echo, identity, result codes off, as text, defaults, repeat
///     +CGMI +CGMM +CGMR +CGSN     manufacturer, model, revision, serial number (+GMI ... likewise)
///     +CSQ +CREG +CPIN +CFUN      signal, registration, card, functionality
///
/// and answers ERROR to everything else. Not synchronised.
class ModemCommands {
public:
    enum class Card { ready, wantsPin, blocked, absent };

    struct Reaction {
        std::string echo;   ///< belongs on the line at once
        std::string answer; ///< of a whole command line, else empty
    };

    static constexpr int kStrongest = 31;       ///< of the signal
    static constexpr int kUnknownSignal = 99;   ///< the value for a signal that is not known
    static constexpr int kLastRegistration = 5; ///< registered, roaming

    Reaction take(char character);

    /// Drops the command line that has begun.
    void forgetLine() { m_line.clear(); }

    /// 0 to kStrongest or kUnknownSignal; others are refused with false.
    bool setSignal(int strength);

    /// 0 to kLastRegistration; others are refused with false.
    bool setRegistration(int state);

    /// What the module says of a new registration unasked: empty unless "+CREG=1" wants it.
    std::string registrationReport() const;

    void setCard(Card card) { m_card = card; }

private:
    struct Word; // a command with its handler
    struct Request;
    enum class Kind { execute, read, test, set };

    std::string answerLine();
    bool runBody(std::string_view body, std::string& answer);
    bool runBasic(std::string_view& body, std::string& answer);
    bool runExtended(std::string_view& body, std::string& answer);
    std::string information(std::string_view text) const;
    std::string result(bool done) const;
    bool identify(const Request& request, std::string& text);
    bool signal(const Request& request, std::string& text);
    bool registration(const Request& request, std::string& text);
    bool card(const Request& request, std::string& text);
    bool functionality(const Request& request, std::string& text);
    bool hasRadio() const;
    void setDefaults();

    static const Word kWords[];

    std::string m_line;     ///< the characters since the last line end
    std::string m_lastBody; ///< for "A/"
    bool m_echo = true;
    bool m_quiet = false;
    bool m_verbose = true;
    bool m_reportsRegistration = false;
    int m_signal = 20;
    int m_registration = 1; // registered, home network
    int m_functionality = 1;
    Card m_card = Card::ready;
};

} // namespace headunit
