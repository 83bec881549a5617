#include "client/Client.h"

#include <gtest/gtest.h>

#include <deque>
#include <vector>

#include "FailureKind.h"
#include "FakeUnit.h"

namespace station {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Brings the given pieces one after the other, then the end of the connection.
class ScriptedLink : public Link {
public:
    explicit ScriptedLink(std::deque<std::string> pieces) : m_pieces(std::move(pieces)) {}

    void send(std::string_view bytes, const Deadline&) override { m_sent += bytes; }

    std::string receive(const Deadline&) override {
        if (m_pieces.empty())
            return {};
        std::string piece = m_pieces.front();
        m_pieces.pop_front();
        return piece;
    }

    const std::string& sent() const { return m_sent; }
    bool isUsedUp() const { return m_pieces.empty(); }

private:
    std::deque<std::string> m_pieces;
    std::string m_sent;
};

class ClientTest : public testing::Test {
protected:
    Answer execute(Client& client, const std::string& name) {
        return client.execute(Request(name, {}), Deadline::after(Seconds(30)),
                              [this](const std::string& message) { m_infos.push_back(message); });
    }

    std::vector<std::string> m_infos;
};

TEST_F(ClientTest, SendsTheRequestAndReturnsTheAnswer) {
    ScriptedLink link({framed("status 1 2")});
    Client client(link);
    EXPECT_EQ(execute(client, "status").text, "1 2");
    EXPECT_EQ(link.sent(), "\x02status\x03\n");
    EXPECT_THAT(m_infos, IsEmpty());
}

TEST_F(ClientTest, HandsInfoMessagesOutInOrderBeforeTheAnswer) {
    ScriptedLink link(
        {framed("Info \"first\nline \"two\"\"") + framed("Info \"\"") + framed("Info \"last\""),
         framed("diag Error 0x1010000")});
    Client client(link);
    EXPECT_EQ(execute(client, "diag").code, 0x1010000U);
    EXPECT_THAT(m_infos, ElementsAre("first\nline \"two\"", "", "last"));
}

TEST_F(ClientTest, TakesTheNameThatAnswersForUnknownCommands) {
    ScriptedLink link(
        {framed("Info \"No Handler for the Command nosuch\"") + framed("Error Error 0x10")});
    Client client(link);
    EXPECT_EQ(execute(client, "nosuch").code, 0x10U);
    EXPECT_THAT(m_infos, ElementsAre("No Handler for the Command nosuch"));
}

TEST_F(ClientTest, TakesAnEmptyLineAsSuccess) {
    ScriptedLink link({framed("")});
    Client client(link);
    const Answer answer = execute(client, "ack");
    EXPECT_EQ(answer.text, "");
    EXPECT_FALSE(answer.isRefusal());
}

TEST_F(ClientTest, RunsCommandsOneAfterTheOther) {
    ScriptedLink link({framed("status 1") + "\x02#au", "dio ok\x03\n"});
    Client client(link);
    EXPECT_EQ(execute(client, "status").text, "1");
    EXPECT_EQ(execute(client, "audio").text, "ok");
    EXPECT_TRUE(link.isUsedUp());
}

TEST_F(ClientTest, ReturnsTheAnswerAlthoughGarbageFollows) {
    ScriptedLink link({framed("audio ok") + "garbage"});
    Client client(link);
    EXPECT_EQ(execute(client, "audio").text, "ok");
}

TEST_F(ClientTest, FailsWhenTheConnectionEndsBeforeTheFinalLine) {
    for (const std::string& bytes :
         {std::string(), framed("Info \"text\""), std::string("\x02#status o")}) {
        ScriptedLink link({});
        if (!bytes.empty())
            link = ScriptedLink({bytes});
        Client client(link);
        EXPECT_THAT(failureOf([&] { execute(client, "status"); }),
                    FailsWith(Failure::Kind::ConnectionLost,
                              "closed the connection before the answer was complete"));
    }
    EXPECT_THAT(m_infos, ElementsAre("text"));
}

TEST_F(ClientTest, FailsOnAnAnswerToAnotherCommand) {
    ScriptedLink link({framed("audio ok")});
    Client client(link);
    EXPECT_THAT(failureOf([&] { execute(client, "status"); }),
                FailsWith(Failure::Kind::MalformedAnswer, "expected one to 'status'"));
}

TEST_F(ClientTest, FailsOnBrokenFramingWithoutWaitingForMore) {
    ScriptedLink link({"status ok", "never asked for"});
    Client client(link);
    EXPECT_THAT(failureOf([&] { execute(client, "status"); }),
                FailsWith(Failure::Kind::MalformedAnswer, "does not begin with STX and '#'"));
    EXPECT_FALSE(link.isUsedUp());
}

} // namespace
} // namespace station
