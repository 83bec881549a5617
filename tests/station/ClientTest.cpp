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

/// Brings the given pieces one after the other, then the end of the connection, or silence when told.
class ScriptedLink : public Link {
public:
    explicit ScriptedLink(std::deque<std::string> pieces, bool staysOpen = false)
        : m_pieces(std::move(pieces)), m_staysOpen(staysOpen) {}

    void send(std::string_view bytes, const Deadline&) override { m_sent += bytes; }

    std::optional<std::string> receiveBy(const Deadline&) override {
        if (m_pieces.empty() && m_staysOpen)
            return std::nullopt;
        if (m_pieces.empty())
            return std::string();
        std::string piece = m_pieces.front();
        m_pieces.pop_front();
        return piece;
    }

    const std::string& sent() const { return m_sent; }
    bool isUsedUp() const { return m_pieces.empty(); }

private:
    std::deque<std::string> m_pieces;
    bool m_staysOpen;
    std::string m_sent;
};

class ClientTest : public testing::Test {
protected:
    void takeArrived(Client& client) {
        client.takeArrived(Deadline::after(Seconds(30)),
                           [this](const std::string& message) { m_infos.push_back(message); });
    }

    Answer execute(Client& client, const std::string& name) {
        return client.execute(Request(name, {}), Deadline::after(Seconds(30)),
                              [this](const std::string& message) { m_infos.push_back(message); });
    }

    std::vector<std::string> m_infos;
};

TEST_F(ClientTest, SendsTheRequestAndReturnsTheAnswer) {
    ScriptedLink link({answer("status 1 2")});
    Client client(link);
    EXPECT_EQ(execute(client, "status").text, "1 2");
    EXPECT_EQ(link.sent(), "\x02status\x03\n");
    EXPECT_THAT(m_infos, IsEmpty());
}

TEST_F(ClientTest, HandsInfoMessagesOutInOrderBeforeTheAnswer) {
    ScriptedLink link(
        {answer("Info \"first\nline \"two\"\"") + answer("Info \"\"") + answer("Info \"last\""),
         answer("diag Error 0x1010000")});
    Client client(link);
    EXPECT_EQ(execute(client, "diag").code, 0x1010000U);
    EXPECT_THAT(m_infos, ElementsAre("first\nline \"two\"", "", "last"));
}

TEST_F(ClientTest, TakesTheNameThatAnswersForUnknownCommands) {
    ScriptedLink link(
        {answer("Info \"No Handler for the Command nosuch\"") + answer("Error Error 0x10")});
    Client client(link);
    EXPECT_EQ(execute(client, "nosuch").code, 0x10U);
    EXPECT_THAT(m_infos, ElementsAre("No Handler for the Command nosuch"));
}

TEST_F(ClientTest, TakesAnEmptyLineAsSuccess) {
    ScriptedLink link({answer("")});
    Client client(link);
    const Answer answer = execute(client, "ack");
    EXPECT_EQ(answer.text, "");
    EXPECT_FALSE(answer.isRefusal());
}

TEST_F(ClientTest, RunsCommandsOneAfterTheOther) {
    ScriptedLink link({answer("status 1") + "\x02#au", "dio ok\x03\n"});
    Client client(link);
    EXPECT_EQ(execute(client, "status").text, "1");
    EXPECT_EQ(execute(client, "audio").text, "ok");
    EXPECT_TRUE(link.isUsedUp());
}

TEST_F(ClientTest, ReturnsTheAnswerAlthoughGarbageFollows) {
    ScriptedLink link({answer("audio ok") + "garbage"});
    Client client(link);
    EXPECT_EQ(execute(client, "audio").text, "ok");
}

TEST_F(ClientTest, FailsWhenTheConnectionEndsBeforeTheFinalLine) {
    for (const std::string& bytes :
         {std::string(), answer("Info \"text\""), std::string("\x02#status o")}) {
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
    ScriptedLink link({answer("audio ok")});
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

TEST_F(ClientTest, TakesAGreetingForNoAnswer) {
    ScriptedLink link({answer("Info Production Test Server (Build x)") + answer("status ok")});
    Client client(link);
    EXPECT_EQ(execute(client, "status").text, "ok");
    EXPECT_THAT(m_infos, ElementsAre("Production Test Server (Build x)"));
}

TEST_F(ClientTest, NeedsNoAnswerToAckWhereEmptyAnswersAreNotSent) {
    ScriptedLink link({answer("Info \"text\"")}, true);
    Client client(link, Client::EmptyAnswer::NotSent);
    EXPECT_FALSE(execute(client, "ack").isRefusal());
    EXPECT_THAT(m_infos, ElementsAre("text"));
    EXPECT_THAT(failureOf([&] { execute(client, "status"); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while waiting for the answer"));
}

TEST_F(ClientTest, NeedsAnAnswerToAckWhereEmptyAnswersAreSent) {
    ScriptedLink link({}, true);
    Client client(link);
    EXPECT_THAT(failureOf([&] { execute(client, "ack"); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while waiting for the answer"));
}

TEST_F(ClientTest, TakesAnAnswerToAckThatComesAllTheSame) {
    ScriptedLink link({answer("Error Error 0x10")}, true);
    Client client(link, Client::EmptyAnswer::NotSent);
    EXPECT_EQ(execute(client, "ack").code, 0x10U);
}

TEST_F(ClientTest, TakesWhatArrivedBefore) {
    ScriptedLink link({answer("Info Production Test") + answer("status o"), answer("Info \"text\"")},
                      true);
    Client client(link);
    takeArrived(client);
    EXPECT_TRUE(link.isUsedUp());
    EXPECT_THAT(m_infos,
                ElementsAre("Production Test",
                            "station: dropped an answer to an earlier command: status o", "text"));
}

TEST_F(ClientTest, DropsWhatArrivedBeforeAndIsNoLine) {
    constexpr char kDropped[] =
        "station: dropped what had arrived before the command and is no complete line";
    for (const std::string& bytes : {std::string("rest of a line\x03\n"), std::string("\x02#half")}) {
        m_infos.clear();
        ScriptedLink link({bytes}, true);
        Client client(link);
        takeArrived(client);
        EXPECT_THAT(m_infos, ElementsAre(kDropped));
        link = ScriptedLink({answer("status ok")});
        EXPECT_EQ(execute(client, "status").text, "ok");
    }
}

TEST_F(ClientTest, TellsThatTheLineHasEndedBeforeTheCommand) {
    ScriptedLink link({});
    Client client(link);
    EXPECT_THAT(failureOf([&] { takeArrived(client); }),
                FailsWith(Failure::Kind::ConnectionLost, "closed the connection"));
}

} // namespace
} // namespace station
