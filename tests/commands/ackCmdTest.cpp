#include "commands/ackCmd.h"

#include <gmock/gmock.h>

#include <memory>

#include "core/Handler.h"
#include "support/RecordingListener.h"

using ::testing::IsEmpty;

namespace {

/// Through the Handler, as a front end would.
class ackCmdTest : public ::testing::Test {
protected:
    ackCmdTest() {
        ackCmd::getInstance();
        if (!handler().isValid())
            handler().start();
    }

    static Handler& handler() { return *Handler::getInstance(); }

    RecordingListener m_listener;
};

} // namespace

TEST_F(ackCmdTest, HasItsIdAndName) {
    EXPECT_EQ(ackCmd::getInstance()->tavrin_getName(), 0x06);
    EXPECT_EQ(ackCmd::getInstance()->ascii_getName(), "ack");
    EXPECT_EQ(ackCmd::getInstance(), ackCmd::getInstance());
}

TEST_F(ackCmdTest, AnyBinaryRequestIsAnsweredByNothing) {
    const unsigned int before = ProcessResponse::m_counter;
    for (const Bytes& request :
         {Bytes{0x02, 0x06}, Bytes{0x03, 0x06, 0xFF}, Bytes{0x06, 0x06, 1, 2, 3, 4}}) {
        SCOPED_TRACE(request.size());
        Bytes copy = request;
        EXPECT_THAT(handler().handleCommand(&copy, &m_listener), IsEmpty());
    }
    EXPECT_THAT(m_listener.frames, IsEmpty());
    EXPECT_EQ(ProcessResponse::m_counter, before);
}

TEST_F(ackCmdTest, AnyLineIsAnsweredByNothing) {
    const unsigned int before = ProcessResponse::m_counter;
    EXPECT_EQ(handler().handleCommand(tokens({"ack"}), &m_listener), "");
    EXPECT_EQ(handler().handleCommand(tokens({"ack", "1", "two", "%s"}), &m_listener), "");
    EXPECT_THAT(m_listener.lines, IsEmpty());
    EXPECT_EQ(ProcessResponse::m_counter, before);
}

TEST_F(ackCmdTest, ItsResponseIsCodeOne) {
    std::vector<std::vector<char>> noTokens;
    const std::unique_ptr<ProcessResponse> binary(
        ackCmd::getInstance()->process(static_cast<Bytes*>(nullptr)));
    const std::unique_ptr<ProcessResponse> ascii(ackCmd::getInstance()->process(noTokens));
    for (const ProcessResponse* response : {binary.get(), ascii.get()}) {
        EXPECT_EQ(response->code, 1u);
        EXPECT_EQ(response->message, "");
        EXPECT_EQ(response->protocol, 0);
    }
}
