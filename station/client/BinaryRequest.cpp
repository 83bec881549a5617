#include "client/BinaryRequest.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

#include "client/Failure.h"
#include "client/Hex.h"
#include "client/Quoting.h"
#include "client/RequestFrame.h"
#include "client/StatusPayload.h"

namespace station {

namespace {

constexpr unsigned char kExecId = 'c';
constexpr unsigned char kAckId = 0x06;
constexpr char kExecute = 0x01;
constexpr char kCommandWord[] = "command";
constexpr std::size_t kExecArguments = 3;

// Length, id, sub-command and two bytes of time limit.
constexpr std::size_t kExecHeader = 5;
constexpr std::size_t kLongestExecText = kLongestFrame - kExecHeader;

// What to do about a request that has no binary form.
constexpr char kUseAscii[] =
    "; use the ASCII form: --target tcp:HOST:PORT, or --protocol ascii on a "
    "line where the unit speaks it";

[[noreturn]] void refuse(const std::string& message) {
    throw Failure(Failure::Kind::InvalidRequest, message);
}

bool isPrintable(char c) {
    return c >= 0x20 && c <= 0x7E;
}
bool isTextCharacter(char c) {
    return isPrintable(c) || c == '\n' || c == '\t' || c == '\r';
}

std::string payloadText(std::string_view payload) {
    if (std::all_of(payload.begin(), payload.end(), isTextCharacter))
        return std::string(payload);
    return hexArgument(payload);
}

/// Decimal, hexadecimal (0x10) or octal (010), as the unit reads it in the ASCII form.
std::optional<std::uint16_t> parseSeconds(std::string_view text) {
    int base = 10;
    if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") {
        base = 16;
        text.remove_prefix(2);
    } else if (text.size() > 1 && text.front() == '0') {
        base = 8;
    }
    std::uint16_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds, base);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return seconds;
}

std::string bigEndian(std::uint16_t number) {
    return {static_cast<char>(number >> 8), static_cast<char>(number)};
}

void checkExecText(std::string_view text) {
    if (text.empty())
        refuse("exec needs a text to run");
    if (text.size() > kLongestExecText)
        refuse("the text has " + std::to_string(text.size()) + " bytes, and a binary request holds " +
               std::to_string(kLongestExecText) + kUseAscii);
    const auto* const wrong = std::find_if_not(text.begin(), text.end(), isPrintable);
    if (wrong != text.end())
        refuse("the text holds the byte " + hexDigits(text.substr(wrong - text.begin(), 1)) +
               ", and a binary request only characters from 20 to 7E" + kUseAscii);
}

} // namespace

BinaryRequest::BinaryRequest(Kind kind, std::string bytes) : m_kind(kind), m_bytes(std::move(bytes)) {}

BinaryRequest BinaryRequest::encode(std::string_view name, const std::vector<std::string>& arguments) {
    if (name == "status")
        return encodeStatus(arguments);
    if (name == "exec")
        return encodeExec(arguments);
    if (name == "ack")
        return encodeAck(arguments);
    refuse("'" + std::string(name) +
           "' has no binary form here (status, exec and ack have one); send its frame with raw "
           "\"hex(...)\", or" +
           std::string(kUseAscii).substr(1));
}

BinaryRequest BinaryRequest::encodeStatus(const std::vector<std::string>& arguments) {
    if (arguments.empty())
        return BinaryRequest(Kind::Status, requestFrame(kStatusId, {}));
    if (arguments.size() == 1 && arguments[0] == "01")
        return BinaryRequest(Kind::Text, requestFrame(kStatusId, "\x01"));
    if (arguments.size() == 1 && arguments[0] == "02")
        return BinaryRequest(Kind::Text, requestFrame(kStatusId, "\x02"));
    if (arguments.size() > 1)
        refuse("status takes at most one argument in the binary form: 01 or 02");
    refuse("status " + arguments[0] + " has no binary form (status, status 01 and status 02 have one)" +
           kUseAscii);
}

BinaryRequest BinaryRequest::encodeExec(const std::vector<std::string>& arguments) {
    // The unit compares the first characters only.
    const std::string_view kWord = kCommandWord;
    if (arguments.size() != kExecArguments || arguments[0].compare(0, kWord.size(), kWord) != 0)
        refuse("exec has one binary form: exec command SECONDS TEXT");
    const auto seconds = parseSeconds(arguments[1]);
    if (!seconds)
        refuse("a binary request holds a time limit of 0 to 65535 seconds, and not '" + arguments[1] +
               "'" + kUseAscii);
    const std::string text = argumentBytes(arguments[2]);
    checkExecText(text);
    return BinaryRequest(Kind::Text, requestFrame(kExecId, kExecute + bigEndian(*seconds) + text));
}

BinaryRequest BinaryRequest::encodeAck(const std::vector<std::string>& arguments) {
    if (!arguments.empty())
        refuse("ack takes no arguments in the binary form");
    return BinaryRequest(Kind::Ack, requestFrame(kAckId, {}));
}

BinaryRequest BinaryRequest::raw(const std::vector<std::string>& arguments) {
    if (arguments.size() != 1 || !isEncodedArgument(arguments[0]))
        refuse("raw takes the bytes of one frame, for example raw \"hex(03 73 01)\"");
    return BinaryRequest(Kind::Raw, argumentBytes(arguments[0]));
}

bool BinaryRequest::isAnswered() const {
    const bool isForAck = m_bytes.size() >= kRequestFrameHeader && m_bytes[0] != 0 && m_bytes[0] != 1 &&
                          static_cast<unsigned char>(m_bytes[1]) == kAckId;
    return !isForAck;
}

bool BinaryRequest::isAnsweredBy(const UnitFrame& frame) const {
    if (m_kind == Kind::Raw)
        return true;
    if (frame.id() != static_cast<unsigned char>(m_bytes[1]))
        return false;
    if (m_kind == Kind::Status)
        return frame.isStatus() || frame.code() != 0;
    // What the request does not have comes back as anything.
    const std::string echoed = {static_cast<char>(frame.subCommand()),
                                static_cast<char>(frame.parameter())};
    const std::string_view sent = std::string_view(m_bytes).substr(kRequestFrameHeader, echoed.size());
    return echoed.compare(0, sent.size(), sent) == 0;
}

Answer BinaryRequest::answer(const UnitFrame& frame) const {
    if (frame.code() != 0)
        return Answer{refusalText(frame.code()), frame.code(), std::string()};
    const std::string payload(frame.payload());
    if (m_kind == Kind::Raw)
        return Answer{std::string(), 0, payload};
    return Answer{m_kind == Kind::Status ? statusText(payload) : payloadText(payload), 0, payload};
}

} // namespace station
