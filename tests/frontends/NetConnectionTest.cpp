#include "frontends/NetConnection.h"

#include <sys/socket.h>

#include <thread>

#include "core/ProcessResponseAscii.h"
#include "support/Lines.h"
#include "support/RunningHandler.h"
#include "support/SocketPair.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// A connection served on its own thread; the command "scripted" answers its first argument.
class NetConnectionTest : public RunningHandler {
protected:
    NetConnectionTest() {
        command().onTokens = [this](Tokens& list) {
            m_arguments.emplace_back(list.size() > 1 ? list[1].data() : "");
            auto* response = new ProcessResponseAscii(0, "");
            response->answer = m_arguments.back();
            return response;
        };
        m_thread = std::thread([this] { NetConnection(std::move(m_sockets.ours)).serve(); });
    }

    ~NetConnectionTest() override {
        hangUp();
        m_thread.join();
    }

    void hangUp() const { ::shutdown(m_sockets.descriptor(), SHUT_WR); }

    void expectAnswers(const std::vector<std::string>& texts) {
        std::string expected;
        for (const std::string& text : texts)
            expected += answer(text);
        EXPECT_EQ(m_sockets.receive(expected.size()), expected);
    }

    SocketPair m_sockets;
    std::vector<std::string> m_arguments; // what the command ran with; read it when it has answered

private:
    std::thread m_thread;
};

} // namespace

TEST_F(NetConnectionTest, AnswersOneCommandAfterTheOther) {
    for (const std::string& argument : {std::string("one"), std::string("two"), std::string("three")}) {
        m_sockets.send(request("scripted " + argument));
        expectAnswers({"scripted " + argument});
    }
    EXPECT_FALSE(m_sockets.hasSomething());
}

TEST_F(NetConnectionTest, AnErrorIsTwoLines) {
    m_sockets.send(request("s"));
    expectAnswers({"Info \"No Handler for the Command s\"", "Error Error 0x10"});
}

TEST_F(NetConnectionTest, NoAnswerIsAnEmptyLine) {
    command().onTokens = [](auto&) { return new ProcessResponse(1); };
    m_sockets.send(request("scripted"));
    EXPECT_EQ(m_sockets.receive(4), "\x02#\x03\n");
}

TEST_F(NetConnectionTest, ACommandMayArriveInPieces) {
    for (const char byte : request("scripted pieces"))
        m_sockets.send(std::string(1, byte));
    expectAnswers({"scripted pieces"});
}

TEST_F(NetConnectionTest, ANewlineWithoutEtxDoesNotEndACommand) {
    m_sockets.send("\x02scripted \n");
    m_sockets.send("go\x03");
    m_sockets.send("\n");
    expectAnswers({"scripted go"});
    EXPECT_THAT(m_arguments, ElementsAre("go"));
}

TEST_F(NetConnectionTest, OfTwoCommandsInOneReadOnlyTheFirstRuns) {
    m_sockets.send(request("scripted one") + request("scripted two"));
    expectAnswers({"scripted one"});
    m_sockets.send(request("scripted three"));
    expectAnswers({"scripted three"});
    EXPECT_THAT(m_arguments, ElementsAre("one", "three"));
}

TEST_F(NetConnectionTest, ALineWithoutACommandRunsTheOneBefore) {
    m_sockets.send(request("scripted again"));
    expectAnswers({"scripted again"});
    m_sockets.send(request(""));
    expectAnswers({"scripted again"});
}

TEST_F(NetConnectionTest, ACommandMayBeLong) {
    const std::string argument(100000, 'x');
    m_sockets.send(request("scripted " + argument));
    const std::string expected = answer("scripted " + argument);
    EXPECT_TRUE(m_sockets.receive(expected.size()) == expected);
}

TEST_F(NetConnectionTest, HangingUpInTheMiddleOfACommandDropsIt) {
    m_sockets.send("\x02scripted half");
    hangUp();
    EXPECT_TRUE(m_sockets.closed());
    EXPECT_THAT(m_arguments, IsEmpty());
}

TEST_F(NetConnectionTest, ABrowserIsHungUpOnAndWhatItSendsDoesNotRun) {
    m_sockets.send("POST / HTTP/1.1\r\nContent-Length: 15\r\n\r\n" + request("scripted evil"));
    EXPECT_TRUE(m_sockets.closed());
    EXPECT_THAT(m_arguments, IsEmpty());
}

TEST_F(NetConnectionTest, ABrowserIsRecognisedHoweverItsBytesArrive) {
    for (const char byte : std::string("GET / HTTP/"))
        m_sockets.send(std::string(1, byte));
    EXPECT_TRUE(m_sockets.closed());
}

TEST_F(NetConnectionTest, NoiseBeforeACommandIsNoBrowser) {
    m_sockets.send("GET /\n");
    m_sockets.send(request("scripted harmless"));
    expectAnswers({"scripted harmless"});
}
