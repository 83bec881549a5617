#include "support/CommandBench.h"

using ::testing::ElementsAre;

Response runRequest(AbstractCmd& command, Bytes frame) {
    return Response(command.tavrin_preCheck(&frame));
}

Response runRequest(AbstractCmd& command, Tokens line) {
    return Response(command.process(line));
}

void expectError(const ProcessResponse& response, unsigned int code, const std::string& text) {
    EXPECT_EQ(response.code, code);
    EXPECT_EQ(response.message, text);
    EXPECT_EQ(response.protocol, 0);
}

void expectRefused(AbstractCmd& command, const Bytes& frame, unsigned int code,
                   const std::string& text) {
    constexpr std::size_t kEchoed = 4;
    SCOPED_TRACE(::testing::PrintToString(frame));
    expectError(runRequest(command, frame), code, text);
    if (frame.size() < kEchoed)
        return;
    FrontEnd frontEnd;
    EXPECT_THAT(frontEnd.send(frame), ElementsAre(8, frame[1], frame[2], frame[3], code >> 24,
                                                  code >> 16 & 0xFF, code >> 8 & 0xFF, code & 0xFF));
    EXPECT_THAT(frontEnd.frames, ElementsAre(debugFrame(text)));
}

void expectRefused(AbstractCmd& command, const Tokens& line, unsigned int code,
                   const std::string& text) {
    SCOPED_TRACE(::testing::PrintToString(line));
    expectError(runRequest(command, line), code, text);
    if (line.empty())
        return;
    FrontEnd frontEnd;
    EXPECT_EQ(frontEnd.send(line),
              string_format("%s Error 0x%X", command.ascii_getName().c_str(), code));
    EXPECT_THAT(frontEnd.lines, ElementsAre(infoLine(text)));
}
