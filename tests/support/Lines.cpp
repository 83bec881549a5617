#include "support/Lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::size_t kShownBytes = 300;

/// Enough to recognise it by; megabytes in a message help nobody.
std::string shown(const std::string& bytes) {
    return bytes.size() <= kShownBytes ? bytes : bytes.substr(0, kShownBytes) + "...";
}

} // namespace

std::string request(const std::string& text) {
    return "\x02" + text + "\x03\n";
}

std::string answer(std::string_view text) {
    return std::string("\x02#").append(text).append("\x03\n");
}

std::string unknown(const std::string& name) {
    return answer("Info \"No Handler for the Command " + name + "\"") + answer("Error Error 0x10");
}

std::string refused(const std::string& command, const std::string& code, const std::string& message) {
    return answer("Info \"" + message + "\"") + answer(command + " Error 0x" + code);
}

std::string failure(const std::string& command, const std::string& message) {
    return refused(command, "1010000", message);
}

std::string base64(std::string_view bytes) {
    constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t present = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t group = 0;
        for (std::size_t offset = 0; offset < 3; ++offset)
            group =
                group << 8 | (offset < present ? static_cast<unsigned char>(bytes[at + offset]) : 0U);
        for (std::size_t digit = 0; digit < 4; ++digit)
            text += digit <= present ? kAlphabet[group >> (18 - 6 * digit) & 0x3F] : '=';
    }
    return text;
}

void expectExchange(const ByteStream& station, const std::string& sent, const std::string& received) {
    station.send(sent);
    const std::string bytes = station.receive(received.size());
    EXPECT_TRUE(bytes == received) << "sent     " << testing::PrintToString(shown(sent)) << "\nexpected "
                                   << testing::PrintToString(shown(received)) << "\nreceived "
                                   << testing::PrintToString(shown(bytes)) << "\n(" << bytes.size()
                                   << " of " << received.size() << " bytes)";
}

void expectNothingMore(const ByteStream& station) {
    expectExchange(station, request("nothingMore"), unknown("nothingMore"));
}
