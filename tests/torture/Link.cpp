#include "Link.h"

#include "model/Notation.h"
#include "support/BinaryFrames.h"
#include "support/Lines.h"

namespace {

constexpr std::size_t kLongestPayload = 246;

/// With the acknowledgement of its answer.
std::string acknowledged(const std::string& frame) {
    return frame + std::string(kAcknowledgement);
}

std::string memoryText(const char* operation, unsigned address, std::size_t count) {
    return "memory " + std::string(operation) + " 8bit " + std::to_string(count) + " " +
           std::to_string(address);
}

std::string memoryFrame(char code, unsigned address, std::size_t count) {
    return std::string{'t', code, static_cast<char>(count)} + bigEndian32(address);
}

std::string execLine(unsigned limitSeconds, const std::string& text) {
    return request("exec command " + std::to_string(limitSeconds) + " base64(" + base64(text) + ")");
}

/// Made longer until base64 carries it without padding, which would arrive as NUL bytes.
std::string whole(std::string text) {
    while (text.size() % 3 != 0)
        text += '\n';
    return text;
}

} // namespace

std::string nameOf(Link link) {
    if (link == Link::Tcp)
        return "tcp";
    return link == Link::Frames ? "frames" : "lines";
}

Spoken numbered(Link link, unsigned number) {
    constexpr char kUnknownIds[] = "xyzQ";
    if (link != Link::Frames) {
        const std::string name = "n" + std::to_string(number);
        return {request(name), unknown(name)};
    }
    const char id = kUnknownIds[number / 0x10000 % 4];
    const std::string frame = framed(id + bigEndian16(number % 0x10000));
    return {acknowledged(frame), refusal(frame, std::string("No Handler for the Command ") + id)};
}

Spoken memoryWrite(Link link, unsigned address, const std::string& bytes) {
    if (link != Link::Frames)
        return {request(memoryText("write", address, bytes.size()) + " " + hexText(bytes)),
                answer("memory ok")};
    const std::string frame = framed(memoryFrame(1, address, bytes.size()) + bytes);
    return {acknowledged(frame), answerFrame(frame)};
}

Spoken memoryRead(Link link, unsigned address, const std::string& bytes) {
    if (link != Link::Frames)
        return {request(memoryText("read", address, bytes.size())), answer("memory " + hexText(bytes))};
    const std::string frame = framed(memoryFrame(0, address, bytes.size()));
    return {acknowledged(frame), answerFrame(frame, bytes)};
}

Spoken shellCommand(Link link, unsigned limitSeconds, const std::string& text,
                    const std::string& output) {
    if (link != Link::Frames)
        return {execLine(limitSeconds, whole(text)), answer("exec base64(" + base64(output) + ")")};
    const std::string frame = execRequest(limitSeconds, text);
    return {acknowledged(frame), answerFrame(frame, output.substr(0, kLongestPayload))};
}

Spoken killedCommand(Link link, unsigned limitSeconds, const std::string& text,
                     const std::string& output) {
    const auto message = [&output](const std::string& command) {
        return "Process " + command + " was killed after timeout\nstdout+err:\n" + output + "\n";
    };
    if (link != Link::Frames)
        return {execLine(limitSeconds, whole(text)), failure("exec", message(whole(text)))};
    const std::string frame = execRequest(limitSeconds, text);
    return {acknowledged(frame), refusal(frame, message(text))};
}
