#include "client/Client.h"

#include <gtest/gtest.h>

#include "FakeUnit.h"
#include "PlayedLink.h"
#include "support/Rows.h"

namespace station {
namespace {

using Kind = Failure::Kind;

constexpr char kNoAnswer[] = "time-out while waiting for the answer";
constexpr char kEnded[] = "closed the connection before the answer was complete";

class ClientTest : public testing::Test {
protected:
    void takeArrived(Client& client) {
        client.takeArrived(Deadline::after(Seconds(30)), sinkInto(m_told));
    }

    Answer execute(Client& client, const std::string& name) {
        return client.execute(Request(name, {}), Deadline::after(Seconds(30)), sinkInto(m_told));
    }

    /// Of a client on a link of its own, on which the rest comes behind its request.
    Answer answerTo(const std::string& name, const Steps& rest) {
        PlayedLink link(sent("\x02" + name + "\x03\n") + rest);
        Client client(link);
        return execute(client, name);
    }

    Infos m_told;
};

class ClientAnswers : public ClientTest, public testing::WithParamInterface<AnsweredRun> {};

TEST_P(ClientAnswers, With) {
    const Answer answer = answerTo(GetParam().command, GetParam().steps);
    EXPECT_EQ(answer.text, GetParam().text);
    EXPECT_EQ(answer.code, GetParam().code);
    EXPECT_EQ(m_told, GetParam().infos);
}

const AnsweredRun kAnswered[] = {
    {"TheTextBehindTheName", "status", arrives(answer("status 1 2")), "1 2", 0, told()},
    {"InfoMessagesInOrderAhead", "diag",
     arrives(answer("Info \"first\nline \"two\"\"") + answer("Info \"\"") + answer("Info \"last\"")) +
         arrives(answer("diag Error 0x1010000")),
     "Error 0x1010000", 0x1010000, told("first\nline \"two\"", "", "last")},
    {"TheNameForUnknownCommands", "nosuch",
     arrives(answer("Info \"No Handler for the Command nosuch\"") + answer("Error Error 0x10")),
     "Error 0x10", 0x10, told("No Handler for the Command nosuch")},
    {"AnEmptyLine", "ack", arrives(answer("")), "", 0, told()},
    {"GarbageBehindIt", "audio", arrives(answer("audio ok") + "garbage"), "ok", 0, told()},
    {"AGreetingAhead", "status",
     arrives(answer("Info Production Test Server (Build x)") + answer("status ok")), "ok", 0,
     told("Production Test Server (Build x)")},
};

INSTANTIATE_TEST_SUITE_P(Runs, ClientAnswers, testing::ValuesIn(kAnswered), titleOf);

class ClientFails : public ClientTest, public testing::WithParamInterface<FailedRun> {};

TEST_P(ClientFails, With) {
    EXPECT_THAT(failureOf([&] { answerTo(GetParam().command, GetParam().steps); }),
                FailsWith(GetParam().kind, GetParam().message));
    EXPECT_EQ(m_told, GetParam().infos);
}

const FailedRun kFailed[] = {
    {"AnEndAtOnce", "status", kHangUp, Kind::ConnectionLost, kEnded, told()},
    {"AnEndBehindAnInfo", "status", arrives(answer("Info \"text\"")) + kHangUp, Kind::ConnectionLost,
     kEnded, told("text")},
    {"AnEndHalfWay", "status", arrives("\x02#status o") + kHangUp, Kind::ConnectionLost, kEnded, told()},
    {"AnAnswerToAnotherCommand", "status", arrives(answer("audio ok")), Kind::MalformedAnswer,
     "expected one to 'status'", told()},
    {"BrokenFramingWithoutWaitingForMore", "status", arrives("status ok"), Kind::MalformedAnswer,
     "does not begin with STX and '#'", told()},
    {"NoAnswerToAckWhereEmptyAnswersAreSent", "ack", {}, Kind::TimedOut, kNoAnswer, told()},
};

INSTANTIATE_TEST_SUITE_P(Runs, ClientFails, testing::ValuesIn(kFailed), titleOf);

TEST_F(ClientTest, RunsCommandsOneAfterTheOther) {
    PlayedLink link(sent(request("status")) + arrives(answer("status 1") + "\x02#au") +
                    sent(request("audio")) + arrives("dio ok\x03\n"));
    Client client(link);
    EXPECT_EQ(execute(client, "status").text, "1");
    EXPECT_EQ(execute(client, "audio").text, "ok");
}

TEST_F(ClientTest, NeedsNoAnswerToAckWhereEmptyAnswersAreNotSent) {
    PlayedLink link(sent(request("ack")) + arrives(answer("Info \"text\"")) + sent(request("status")));
    Client client(link, Client::EmptyAnswer::NotSent);
    EXPECT_FALSE(execute(client, "ack").isRefusal());
    EXPECT_EQ(m_told, told("text"));
    EXPECT_THAT(failureOf([&] { execute(client, "status"); }), FailsWith(Kind::TimedOut, kNoAnswer));
}

TEST_F(ClientTest, TakesAnAnswerToAckThatComesAllTheSame) {
    PlayedLink link(sent(request("ack")) + arrives(answer("Error Error 0x10")));
    Client client(link, Client::EmptyAnswer::NotSent);
    EXPECT_EQ(execute(client, "ack").code, 0x10U);
}

TEST_F(ClientTest, TakesWhatArrivedBefore) {
    PlayedLink link(arrives(answer("Info Production Test") + answer("status o")) +
                    arrives(answer("Info \"text\"")));
    Client client(link);
    takeArrived(client);
    EXPECT_EQ(m_told, told("Production Test",
                           "station: dropped an answer to an earlier command: status o", "text"));
}

TEST_F(ClientTest, DropsWhatArrivedBeforeAndIsNoLine) {
    for (const std::string& bytes : {std::string("rest of a line\x03\n"), std::string("\x02#half")}) {
        m_told.clear();
        PlayedLink link(arrives(bytes) + sent(request("status")) + arrives(answer("status ok")));
        Client client(link);
        takeArrived(client);
        EXPECT_EQ(m_told,
                  told("station: dropped what had arrived before the command and is no complete line"));
        EXPECT_EQ(execute(client, "status").text, "ok");
    }
}

TEST_F(ClientTest, TellsThatTheLineHasEndedBeforeTheCommand) {
    PlayedLink link(kHangUp);
    Client client(link);
    EXPECT_THAT(failureOf([&] { takeArrived(client); }),
                FailsWith(Kind::ConnectionLost, "closed the connection"));
}

} // namespace
} // namespace station
