#include "requests/Answers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>
#include <string_view>

#include "requests/Notation.h"
#include "support/BinaryFrames.h"
#include "support/Lines.h"

namespace {

using Kind = Expected::Kind;

constexpr char kTooShort[] = "request size < 4";

void require(bool condition, const std::string& expected, const std::string& received) {
    if (!condition)
        throw std::runtime_error("expected " + testing::PrintToString(expected) + "\nreceived " +
                                 testing::PrintToString(received));
}

bool isText(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) {
        return static_cast<unsigned char>(byte) >= ' ' || byte == '\n' || byte == '\t';
    });
}

/// A message is some text, or the one that is wanted.
bool isMessage(std::string_view text, const std::string& wanted) {
    return wanted.empty() ? isText(text) : text == wanted;
}

std::string codeText(std::uint32_t code) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), " Error 0x%X", code);
    return text.data();
}

/// The command that answers; what nobody knows is answered by the one for errors.
std::string answeringCommand(const Exchange& exchange) {
    return exchange.lineExpected.content.empty() || exchange.lineExpected.kind != Kind::Refusal
               ? exchange.line.substr(0, exchange.line.find(' '))
               : "Error";
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// A line of information, then the answer.
void expectRefusedLine(Connection& station, const Exchange& exchange) {
    const std::string begin = "\x02#Info \"";
    const std::string end =
        "\"\x03\n" + answer(answeringCommand(exchange) + codeText(exchange.lineExpected.code));
    std::string received = station.receive(begin.size() + end.size());
    while (!endsWith(received, end)) {
        const std::string byte = station.receive(1);
        if (byte.empty())
            break;
        received += byte;
    }
    const std::string& wanted = exchange.lineExpected.content;
    const bool framed = received.size() >= begin.size() + end.size() &&
                        received.compare(0, begin.size(), begin) == 0 && endsWith(received, end);
    require(framed && isMessage(std::string_view(received).substr(
                                    begin.size(), received.size() - begin.size() - end.size()),
                                wanted),
            begin + (wanted.empty() ? "..." : wanted) + end, received);
}

/// The bytes that come are not known, but for the first ones.
void expectBytesInLine(Connection& station, const Exchange& exchange) {
    const std::string begin = "\x02#" + answeringCommand(exchange) + " hex(";
    const std::string end = ")\x03\n";
    const Expected& expected = exchange.lineExpected;
    const std::string received = station.receive(begin.size() + 2 * expected.count + end.size());
    const std::string digits =
        received.size() > begin.size() + end.size()
            ? received.substr(begin.size(), received.size() - begin.size() - end.size())
            : "";
    const bool right = received == begin + digits + end && digits.size() == 2 * expected.count &&
                       digits.find_first_not_of("0123456789ABCDEF") == std::string::npos &&
                       digits.compare(0, 2 * expected.content.size(), hexDigits(expected.content)) == 0;
    require(right, begin + hexDigits(expected.content) + "..." + end, received);
}

void expectDebugFrame(Adapter& station, const std::string& wanted) {
    const std::string frame = station.receiveFrame();
    require(frame.size() >= 2 && frame[1] == 'd' && isMessage(frame.substr(2), wanted),
            "a message " + wanted, frame);
}

std::string answerHeader(const Exchange& exchange) {
    std::string echo = exchange.echo.empty() ? exchange.frame.substr(0, 3) : exchange.echo;
    echo.resize(3);
    return echo + bigEndian32(exchange.frameExpected.code);
}

void expectFrames(Adapter& station, const Exchange& exchange) {
    const Expected& expected = exchange.frameExpected;
    if (expected.kind == Kind::Refusal || expected.kind == Kind::Unanswered)
        expectDebugFrame(station, expected.content);
    if (expected.kind == Kind::Unanswered)
        return expectDebugFrame(station, kTooShort);
    const std::string received = station.receiveFrame();
    const std::string payload = expected.kind == Kind::Refusal ? "" : expected.content;
    const std::string wanted = answerHeader(exchange) + payload;
    if (expected.kind != Kind::Bytes)
        return require(received == framed(wanted), framed(wanted), received);
    require(received.size() == 8 + expected.count && received.compare(1, wanted.size(), wanted) == 0,
            framed(wanted) + "...", received);
}

} // namespace

void exchangeLine(Connection& station, const Exchange& exchange) {
    station.send(request(exchange.line));
    const Expected& expected = exchange.lineExpected;
    if (expected.kind == Kind::Refusal)
        return expectRefusedLine(station, exchange);
    if (expected.kind == Kind::Bytes)
        return expectBytesInLine(station, exchange);
    const std::string wanted = expected.kind == Kind::Nothing
                                   ? answer("")
                                   : answer(answeringCommand(exchange) + " " + expected.content);
    const std::string received = station.receive(wanted.size());
    require(received == wanted, wanted, received);
}

void exchangeFrame(Adapter& station, const Exchange& exchange) {
    const Kind kind = exchange.frameExpected.kind;
    const bool isAnswered = kind != Kind::Nothing && kind != Kind::Unanswered;
    // Acknowledged with the request: the unit reads that only once it has answered.
    station.send(framed(exchange.frame).append(isAnswered ? kAcknowledgement : ""));
    if (kind != Kind::Nothing)
        expectFrames(station, exchange);
}
