#include "terminal/Channel.h"

#include <algorithm>
#include <utility>

#include "client/Failure.h"
#include "client/Hex.h"
#include "client/Quoting.h"
#include "session/Refused.h"

namespace station {

namespace {

constexpr char kCommand[] = "serial";

// A byte takes up to 12 bits, and a fetch that does not come back full lasts 20 ms.
constexpr std::size_t kBitsPerByte = 12;
constexpr std::size_t kFetchesPerSecond = 50;
constexpr std::size_t kMostSent = 240;

// What an argument cannot be, an answer can.
constexpr std::string_view kNothing = "base64()";

std::size_t mostSentAt(std::uint32_t baud) {
    return std::clamp<std::size_t>(baud / (kBitsPerByte * kFetchesPerSecond), 1, kMostSent);
}

[[noreturn]] void failMalformed(const std::string& expected, const std::string& text) {
    throw Failure(Failure::Kind::MalformedAnswer,
                  "malformed answer: expected " + expected + "base64(...): " + text);
}

} // namespace

Channel::Channel(Session& session, const TerminalOrder& order, Session::InfoSink onInfo)
    : m_session(session),
      m_order(order),
      m_onInfo(std::move(onInfo)),
      m_number(std::to_string(order.channel)),
      m_mostSent(mostSentAt(order.baud)) {}

void Channel::open() {
    execute({"open", m_number, std::to_string(m_order.baud), std::to_string(m_order.flags)});
}

void Channel::send(std::string_view bytes) {
    // The other encoding fills its bytes up with zeros.
    execute({"send", m_number, "hex(" + hexDigits(bytes) + ")"});
}

std::string Channel::fetch() {
    const Answer answer = execute({"getall", m_number});
    const std::string opening =
        "getall 0x" + hexDigits(std::string(1, static_cast<char>(m_order.channel))) + ' ';
    const std::string_view text = answer.text;
    const std::string_view encoded = text.substr(std::min(opening.size(), text.size()));
    if (text.substr(0, opening.size()) != opening || !isBase64Argument(encoded))
        failMalformed(opening, answer.text);
    if (encoded == kNothing)
        return {};
    try {
        return argumentBytes(encoded);
    } catch (const Failure&) {
        failMalformed(opening, answer.text);
    }
}

void Channel::close() {
    execute({"close", m_number});
}

Answer Channel::execute(const std::vector<std::string>& arguments) {
    return carryOut(m_session, kCommand, arguments, m_onInfo);
}

} // namespace station
