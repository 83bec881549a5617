#include "support/BinaryFrames.h"

#include <algorithm>
#include <cstddef>

namespace {

using namespace std::string_literals;

constexpr std::size_t kMaxDebugText = 253;

char asByte(std::size_t number) {
    return static_cast<char>(static_cast<unsigned char>(number));
}

std::string answered(std::string_view request, std::string_view code, std::string_view payload) {
    std::string echo(request.substr(std::min<std::size_t>(request.size(), 1), 3));
    echo.resize(3);
    return framed(echo.append(code).append(payload));
}

/// Two characters of the stamp as a byte of two decimal digits; a blank counts as zero.
char packed(const std::string& stamp, std::size_t at) {
    const int high = stamp[at] == ' ' ? 0 : stamp[at] - '0';
    return static_cast<char>(high * 16 + (stamp[at + 1] - '0'));
}

} // namespace

std::string framed(std::string_view rest) {
    return std::string(1, asByte(rest.size() + 1)).append(rest);
}

std::string debugFrame(std::string_view text) {
    return framed("d"s.append(text.substr(0, kMaxDebugText)));
}

std::string answerFrame(std::string_view request, std::string_view payload) {
    return answered(request, "\0\0\0\0"s, payload);
}

std::string errorFrame(std::string_view request) {
    return answered(request, "\1\1\0\0"s, {});
}

std::string refusal(std::string_view request, std::string_view text) {
    return debugFrame(text) + errorFrame(request);
}

std::string unanswerable(std::string_view text) {
    return debugFrame(text) + debugFrame("request size < 4");
}

std::string statusFrame(const std::string& buildStamp, bool sentBefore) {
    constexpr std::size_t kDay = 8, kMonth = 5, kYear = 2, kHour = 11, kMinute = 14;
    std::string frame = "\x18s\x2C"s;
    frame += sentBefore ? '\1' : '\0';
    frame.append(4, '\0');
    for (const std::size_t at : {kDay, kMonth, kYear, kHour, kMinute})
        frame += packed(buildStamp, at);
    return frame + "\xA0\x24\0\x1A\4\0\0\0\0\0\0"s;
}

std::string repetitionFrames() {
    return debugFrame("Startup State sent but requested again") +
           debugFrame("Probaby due to connection cut");
}

std::string execRequest(unsigned limitSeconds, std::string_view command) {
    return framed(
        std::string{'c', 1, asByte(limitSeconds / 256), asByte(limitSeconds % 256)}.append(command));
}
