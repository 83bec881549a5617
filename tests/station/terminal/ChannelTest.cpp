#include "terminal/Channel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FailureKind.h"
#include "FakeChannelSession.h"
#include "session/Refused.h"

namespace station {
namespace {

using testing::ElementsAre;

const Session::InfoSink kNobody = [](const std::string&) {};

class ChannelTest : public testing::Test {
protected:
    Channel channel(std::uint32_t baud = 115200) { return {session, {1, baud, 0x0F}, kNobody}; }

    /// What is fetched when the unit answers with this text.
    std::string fetched(const std::string& text) {
        session.before = [text](const std::string&, std::size_t) { return Answer{text}; };
        return channel().fetch();
    }

    FakeChannelSession session;
};

TEST_F(ChannelTest, SaysItInTheUnitsWords) {
    Channel line = channel(9600);
    line.open();
    line.send(std::string("\0A\xFF", 3));
    line.fetch();
    line.close();
    EXPECT_THAT(session.requests(),
                ElementsAre("open 1 9600 15", "send 1 hex(0041FF)", "getall 1", "close 1"));
}

TEST_F(ChannelTest, FetchesWhatHasCome) {
    EXPECT_EQ(fetched("getall 0x01 base64()"), "");
    EXPECT_EQ(fetched("getall 0x01 base64(QQ==)"), "A");
    EXPECT_EQ(fetched("getall 0x01 base64(AP8K)"), std::string("\0\xFF\n", 3));
}

TEST_F(ChannelTest, TellsAnAnswerThatIsNone) {
    for (const char* text : {"", "ok", "getall 0x01 ", "getall 0x02 base64(QQ==)", "getall 0x01 hex(41)",
                             "getall 0x01 base64(Q)", "getall 0x01 base64(QQ==", "base64(QQ==)"})
        EXPECT_THAT(failureOf([&] { fetched(text); }),
                    FailsWith(Failure::Kind::MalformedAnswer,
                              "expected getall 0x01 base64(...): " + std::string(text)));
}

TEST_F(ChannelTest, ThrowsARefusal) {
    session.before = [](const std::string&, std::size_t) {
        return Answer{"Error 0xA000004", 0x0A000004};
    };
    Channel line = channel();
    EXPECT_THROW(line.open(), Refused);
    EXPECT_THROW(line.send("a"), Refused);
    EXPECT_THROW(line.fetch(), Refused);
    EXPECT_THROW(line.close(), Refused);
}

TEST_F(ChannelTest, KnowsWhatTheLineTakesDuringAFetch) {
    EXPECT_EQ(channel(0).mostSent(), 1U);
    EXPECT_EQ(channel(50).mostSent(), 1U);
    EXPECT_EQ(channel(9600).mostSent(), 16U);
    EXPECT_EQ(channel(115200).mostSent(), 192U);
    EXPECT_EQ(channel(4294967295U).mostSent(), 240U);
    EXPECT_LT(channel(4294967295U).mostSent(), Channel::kMostFetched);
}

} // namespace
} // namespace station
