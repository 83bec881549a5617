#include "support/CommandBench.h"

#include <algorithm>
#include <stdexcept>

#include "core/ProcessResponseAscii.h"
#include "core/ProcessResponseTavrin.h"
#include "wire/BigEndian.h"

using ::testing::ElementsAre;

namespace {

constexpr std::size_t kIdentified = 2; // its length and its command
constexpr std::size_t kEchoed = 4;

} // namespace

Bytes bigEndian(unsigned int number) {
    Bytes bytes(sizeof number);
    putBigEndian32(bytes, 0, number);
    return bytes;
}

Bytes joined(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

Bytes answerTo(const Bytes& request, const Bytes& data) {
    const auto size = static_cast<unsigned char>(8 + data.size());
    return joined({size, request[1], request[2], request[3], 0, 0, 0, 0}, data);
}

Tokens lineWithData(const Words& words, const Bytes& data) {
    Tokens line = tokens(words);
    line.emplace_back(data.begin(), data.end());
    return line;
}

Response runRequest(AbstractCmd& command, Bytes frame) {
    return Response(command.tavrin_preCheck(&frame));
}

Response runRequest(AbstractCmd& command, Tokens line) {
    return Response(command.process(line));
}

const Bytes& frameOf(const ProcessResponse& response) {
    static const Bytes none;
    EXPECT_EQ(response.protocol, 't');
    return response.protocol == 't' ? static_cast<const ProcessResponseTavrin&>(response).data : none;
}

const std::string& answerOf(const ProcessResponse& response) {
    static const std::string none;
    EXPECT_EQ(response.protocol, 'a');
    return response.protocol == 'a' ? static_cast<const ProcessResponseAscii&>(response).answer : none;
}

void expectSuccess(const ProcessResponse& response) {
    EXPECT_EQ(response.code, 0u);
    EXPECT_EQ(response.message, "");
}

void expectSuccess(const ProcessResponse& response, const Bytes& frame) {
    expectSuccess(response);
    EXPECT_EQ(frameOf(response), frame);
}

void expectSuccess(const ProcessResponse& response, const std::string& answer) {
    expectSuccess(response);
    EXPECT_EQ(answerOf(response), answer);
}

void expectError(const ProcessResponse& response, unsigned int code, const std::string& text,
                 char protocol) {
    EXPECT_EQ(response.code, code);
    EXPECT_EQ(response.message, text);
    EXPECT_EQ(response.protocol, protocol);
}

void expectErrorSent(FrontEnd& frontEnd, const Bytes& frame, unsigned int code,
                     const std::string& text) {
    EXPECT_THAT(frontEnd.send(frame), ElementsAre(8, frame[1], frame[2], frame[3], code >> 24,
                                                  code >> 16 & 0xFF, code >> 8 & 0xFF, code & 0xFF));
    EXPECT_THAT(frontEnd.frames, ElementsAre(debugFrame(text)));
}

void expectErrorSent(FrontEnd& frontEnd, const Tokens& line, unsigned int code,
                     const std::string& text) {
    const std::vector<char>& word = line.front();
    const std::string name(word.begin(), std::find(word.begin(), word.end(), '\0'));
    EXPECT_EQ(frontEnd.send(line), string_format("%s Error 0x%X", name.c_str(), code));
    EXPECT_THAT(frontEnd.lines, ElementsAre(infoLine(text)));
}

void expectRefused(AbstractCmd& command, FrontEnd& frontEnd, const Bytes& frame, unsigned int code,
                   const std::string& text) {
    SCOPED_TRACE(::testing::PrintToString(frame));
    command.setListener(&frontEnd); // as the dispatcher does for each request
    expectError(runRequest(command, frame), code, text);
    command.setListener(nullptr);
    if (frame.size() >= kEchoed) {
        expectErrorSent(frontEnd, frame, code, text);
    } else if (frame.size() >= kIdentified) {
        EXPECT_THROW(frontEnd.send(frame), std::out_of_range);
        EXPECT_THAT(frontEnd.frames, ElementsAre(debugFrame(text), debugFrame("request size < 4")));
    }
}

void expectRefused(AbstractCmd& command, FrontEnd& frontEnd, const Tokens& line, unsigned int code,
                   const std::string& text) {
    SCOPED_TRACE(::testing::PrintToString(line));
    command.setListener(&frontEnd);
    expectError(runRequest(command, line), code, text);
    command.setListener(nullptr);
    if (!line.empty())
        expectErrorSent(frontEnd, line, code, text);
}
