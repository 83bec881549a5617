#include <stdexcept>

#include "core/ProcessResponseAscii.h"
#include "support/Rows.h"
#include "support/RunningHandler.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class HandlerAsciiTest : public RunningHandler {};

} // namespace

TEST_F(HandlerAsciiTest, ACommandGetsItsTokensAndItsListener) {
    Tokens received;
    command().onTokens = [&](Tokens& list) {
        received = list;
        EXPECT_EQ(command().listener(), &m_listener);
        std::string line = "while it runs";
        command().listener()->asyncSend(line);
        auto* response = new ProcessResponseAscii(0, "");
        response->answer = "done";
        return response;
    };
    EXPECT_EQ(send({"scripted", "1", "two words"}), "scripted done");
    EXPECT_EQ(received, tokens({"scripted", "1", "two words"}));
    EXPECT_THAT(m_listener.lines, ElementsAre("while it runs"));
}

TEST_F(HandlerAsciiTest, PlainSuccessIsOk) {
    EXPECT_EQ(send({"scripted"}), "scripted ok");
    EXPECT_THAT(m_listener.lines, IsEmpty());
}

TEST_F(HandlerAsciiTest, AnErrorIsItsTextAndThenItsLine) {
    command().onTokens = [](Tokens&) { return new ProcessResponse(0x01010000, "no %s", "way"); };
    EXPECT_EQ(send({"scripted"}), "scripted Error 0x1010000");
    EXPECT_THAT(m_listener.lines, ElementsAre("Info \"no way\""));
}

TEST_F(HandlerAsciiTest, AnUnknownNameIsAnsweredInTheNameOfTheErrorCommand) {
    const std::string noHandler = "No Handler for the Command ";
    const std::string longName(5000, 'n');
    const Rows<const char*, Tokens, std::string> rows = {
        {"with an argument", tokens({"foo", "1"}), noHandler + "foo"},
        {"in another case", tokens({"Scripted"}), noHandler + "Scripted"},
        {"a beginning of a name", tokens({"script"}), noHandler + "script"},
        {"per-cent signs", tokens({"%n%s%x"}), noHandler + "%n%s%x"},
        {"only a zero byte", tokens({""}), noHandler},
        {"an empty token", {{}}, noHandler},
        {"a token without a zero byte", {{'f', 'o', 'o'}}, noHandler + "foo"},
        {"a zero byte inside", {{'f', '\0', 'o', '\0'}}, noHandler + "f"},
        {"a long name", tokens({longName}), noHandler + longName},
        {"the error command's own", tokens({"Error"}), noHandler + "Error"},
    };
    for (const auto& [what, request, info] : rows) {
        SCOPED_TRACE(what);
        m_listener.lines.clear();
        EXPECT_EQ(handler().handleCommand(request, &m_listener), "Error Error 0x10");
        EXPECT_THAT(m_listener.lines, ElementsAre("Info \"" + info + "\""));
    }
}

TEST_F(HandlerAsciiTest, ANameEndsAtItsZeroByte) {
    EXPECT_EQ(
        handler().handleCommand({{'s', 'c', 'r', 'i', 'p', 't', 'e', 'd', '\0', 'x'}}, &m_listener),
        "scripted ok");
    EXPECT_EQ(handler().handleCommand({{'s', 'c', 'r', 'i', 'p', 't', 'e', 'd'}}, &m_listener),
              "scripted ok");
}

TEST_F(HandlerAsciiTest, NoTokensAreComplainedOfOnStandardOutput) {
    ::testing::internal::CaptureStdout();
    const std::string answer = handler().handleCommand(Tokens{}, &m_listener);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "command fehler\n");
    EXPECT_EQ(answer, "");
    EXPECT_THAT(m_listener.lines, IsEmpty());
    EXPECT_EQ(send({"scripted"}), "scripted ok");
}

TEST_F(HandlerAsciiTest, WhatACommandThrowsIsAGenericError) {
    const Rows<const char*, std::function<ProcessResponse*(Tokens&)>> rows = {
        {"out of order %s",
         [](Tokens&) -> ProcessResponse* { throw std::runtime_error("out of order %s"); }},
        {"std::bad_alloc", [](Tokens&) -> ProcessResponse* { throw std::bad_alloc(); }},
        {"The command failed with an unknown exception", [](Tokens&) -> ProcessResponse* { throw 7; }},
        {"The command gave no response", [](Tokens&) -> ProcessResponse* { return nullptr; }},
    };
    for (const auto& [text, process] : rows) {
        SCOPED_TRACE(text);
        m_listener.lines.clear();
        command().onTokens = process;
        EXPECT_EQ(send({"scripted"}), "scripted Error 0x1010000");
        EXPECT_THAT(m_listener.lines, ElementsAre("Info \"" + std::string(text) + "\""));
        EXPECT_EQ(command().listener(), nullptr);
    }
}

TEST_F(HandlerAsciiTest, CodeOneIsAnsweredByNothingAndFreed) {
    command().onTokens = [](Tokens&) { return new ProcessResponseAscii(1, "not sent"); };
    const unsigned int before = ProcessResponse::m_counter;
    EXPECT_EQ(send({"scripted"}), "");
    EXPECT_THAT(m_listener.lines, IsEmpty());
    EXPECT_EQ(ProcessResponse::m_counter, before);
}

TEST_F(HandlerAsciiTest, ACommandForgetsItsListenerWithTheRequest) {
    send({"scripted"});
    EXPECT_EQ(command().listener(), nullptr);
    command().ascii_exec(new ProcessResponse(2, "too late"));
    EXPECT_THAT(m_listener.lines, IsEmpty());
}

TEST_F(HandlerAsciiTest, WithoutAListenerTextsAreDropped) {
    command().onTokens = [](Tokens&) { return new ProcessResponse(2, "abc"); };
    EXPECT_EQ(handler().handleCommand(tokens({"scripted"}), nullptr), "scripted Error 0x2");
    EXPECT_EQ(handler().handleCommand(tokens({"foo"}), nullptr), "Error Error 0x10");
}

TEST_F(HandlerAsciiTest, WhatTheListenerThrowsComesBackToTheCaller) {
    class Broken : public RecordingListener {
        void asyncSend(std::string&) override { throw std::runtime_error("line is broken"); }
    };
    Broken broken;
    const unsigned int before = ProcessResponse::m_counter;
    EXPECT_THROW(handler().handleCommand(tokens({"foo"}), &broken), std::runtime_error);
    EXPECT_EQ(ProcessResponse::m_counter, before);
    EXPECT_EQ(send({"scripted"}), "scripted ok");
}

TEST_F(HandlerAsciiTest, OtherRequestsRunWhileAnAnswerIsBeingMade) {
    class Nested : public RecordingListener {
    public:
        explicit Nested(std::function<std::string()> request) : m_request(std::move(request)) {}
        void asyncSend(std::string& text) override {
            RecordingListener::asyncSend(text);
            answer = m_request(); // would wait for itself if the dispatcher were here
        }
        std::string answer;

    private:
        std::function<std::string()> m_request;
    };
    Nested nested([this] { return send({"scripted"}); });
    EXPECT_EQ(handler().handleCommand(tokens({"foo"}), &nested), "Error Error 0x10");
    EXPECT_THAT(nested.lines, ElementsAre("Info \"No Handler for the Command foo\""));
    EXPECT_EQ(nested.answer, "scripted ok");
}

TEST_F(HandlerAsciiTest, AHugeAnswerIsNotCopied) {
    const char* place = nullptr;
    command().onTokens = [&place](Tokens&) {
        auto* response = new ProcessResponseAscii(0, "");
        response->answer.assign(1000, 'x');
        response->answer.reserve(2000);
        place = response->answer.data();
        return response;
    };
    const std::string answer = send({"scripted"});
    EXPECT_EQ(answer, "scripted " + std::string(1000, 'x'));
    EXPECT_EQ(answer.data(), place);
}
