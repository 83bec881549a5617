#include <stdexcept>
#include <thread>

#include "support/Rows.h"
#include "support/RunningHandler.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const std::string kTooShort = "request size < 4";

class HandlerBinaryTest : public RunningHandler {
protected:
    /// Sends a request that cannot be answered, and sees that the next one can.
    void expectBoundsException(const Bytes& request) {
        EXPECT_THAT([&] { send(request); },
                    ::testing::ThrowsMessage<std::out_of_range>("invalid vector<T> subscript"));
        EXPECT_EQ(command().listener(), nullptr);
        command().reset();
        EXPECT_THAT(send({0x04, 'Q', 1, 2}), ElementsAre(8, 'Q', 1, 2, 0, 0, 0, 0));
    }
};

} // namespace

TEST_F(HandlerBinaryTest, TheDispatcherIsAStatedThread) {
    EXPECT_TRUE(handler().isValid());
    send({0x04, 'Q', 0, 0});
    EXPECT_EQ(handler().getState(), StatedThread::Started);
    EXPECT_FALSE(handler().start()) << "there is one dispatcher";
}

TEST_F(HandlerBinaryTest, ACommandGetsItsRequestAndItsListenerOnAnotherThread) {
    Bytes received;
    std::thread::id runner;
    command().onRequest = [&](Bytes* request) {
        received = *request;
        runner = std::this_thread::get_id();
        command().tavrin_sendAsyncDebug("while it runs");
        EXPECT_EQ(command().listener(), &m_listener);
        auto* response = new ProcessResponseTavrin(0, "");
        Bytes payload = {0xAA, 0xBB};
        command().tavrin_fillDefaultResponse(request, response, payload);
        return response;
    };
    EXPECT_THAT(send({0x05, 'Q', 1, 2, 3}), ElementsAre(10, 'Q', 1, 2, 0, 0, 0, 0, 0xAA, 0xBB));
    EXPECT_THAT(received, ElementsAre(0x05, 'Q', 1, 2, 3));
    EXPECT_THAT(m_listener.frames, ElementsAre(debugFrame("while it runs")));
    EXPECT_NE(runner, std::this_thread::get_id());
}

TEST_F(HandlerBinaryTest, AnErrorIsItsTextAndThenItsFrame) {
    command().onRequest = [](Bytes*) { return new ProcessResponse(0x2, "abc"); };
    EXPECT_THAT(send({0x04, 'Q', 1, 2}), ElementsAre(8, 'Q', 1, 2, 0, 0, 0, 2));
    EXPECT_THAT(m_listener.frames, ElementsAre(Bytes{0x05, 0x64, 'a', 'b', 'c'}));
}

TEST_F(HandlerBinaryTest, AnUnknownIdIsAnsweredInTheNameOfTheErrorCommand) {
    const Rows<unsigned char, const char*> rows = {
        {'x', "No Handler for the Command x"},     {0x7F, "No Handler for the Command 0x7F"},
        {0x00, "No Handler for the Command 0x00"}, {0xFF, "No Handler for the Command 0xFF"},
        {'%', "No Handler for the Command 0x25"},
    };
    for (const auto& [id, text] : rows) {
        SCOPED_TRACE(text);
        m_listener.frames.clear();
        EXPECT_THAT(send({0x04, id, 0x00, 0x00}), ElementsAre(8, id, 0, 0, 1, 1, 0, 0));
        EXPECT_THAT(m_listener.frames, ElementsAre(debugFrame(text)));
    }
    EXPECT_THAT(send({0x09, 'x', 5, 6}), ElementsAre(8, 'x', 5, 6, 1, 1, 0, 0))
        << "its length does not matter";
}

TEST_F(HandlerBinaryTest, AFrameThatIsNotValidIsAnsweredByItsCommand) {
    bool ran = false;
    command().willRun([&ran] { ran = true; });
    EXPECT_THAT(send({0x03, 'Q', 9, 1}), ElementsAre(8, 'Q', 9, 1, 1, 1, 0, 0));
    EXPECT_THAT(m_listener.frames,
                ElementsAre(debugFrame("Internal Error: Invalid Request Buffer Size")));
    EXPECT_FALSE(ran);
}

TEST_F(HandlerBinaryTest, ARequestTooShortToBeLookedUpIsRefusedAtOnce) {
    bool ran = false;
    command().willRun([&ran] { ran = true; });
    for (const Bytes& request : {Bytes{}, Bytes{0x01}, Bytes{'Q'}}) {
        SCOPED_TRACE(request.size());
        expectBoundsException(request);
    }
    EXPECT_THROW(handler().handleCommand(static_cast<Bytes*>(nullptr), &m_listener), std::out_of_range);
    EXPECT_FALSE(ran);
    EXPECT_THAT(m_listener.frames, IsEmpty());
}

TEST_F(HandlerBinaryTest, ARequestTooShortToBeAnsweredThrowsOnTheCallersThread) {
    const Rows<const char*, Bytes, std::vector<std::string>> rows = {
        {"success", {0x02, 'Q'}, {kTooShort}},
        {"success with a sub-command", {0x03, 'Q', 0x09}, {kTooShort}},
        {"unknown", {0x02, 'x'}, {"No Handler for the Command x", kTooShort}},
        {"unknown with a sub-command", {0x03, 'x', 0x09}, {"No Handler for the Command x", kTooShort}},
        {"wrong size", {0x04, 'Q'}, {"Internal Error: Invalid Request Buffer Size", kTooShort}},
    };
    for (const auto& [what, request, texts] : rows) {
        SCOPED_TRACE(what);
        m_listener.frames.clear();
        expectBoundsException(request);
        std::vector<Bytes> expected;
        for (const std::string& text : texts)
            expected.push_back(debugFrame(text));
        EXPECT_EQ(m_listener.frames, expected);
    }
}

TEST_F(HandlerBinaryTest, AnErrorOfAShortRequestThrowsAfterItsText) {
    command().onRequest = [](Bytes*) { return new ProcessResponse(2, "abc"); };
    expectBoundsException({0x03, 'Q', 0x09});
    EXPECT_THAT(m_listener.frames, ElementsAre(debugFrame("abc"), debugFrame(kTooShort)));
}

TEST_F(HandlerBinaryTest, WhatACommandThrowsIsAGenericError) {
    const Rows<const char*, std::function<ProcessResponse*(Bytes*)>> rows = {
        {"out of order %s",
         [](Bytes*) -> ProcessResponse* { throw std::runtime_error("out of order %s"); }},
        {"std::bad_alloc", [](Bytes*) -> ProcessResponse* { throw std::bad_alloc(); }},
        {"The command failed with an unknown exception", [](Bytes*) -> ProcessResponse* { throw 7; }},
        {"The command gave no response", [](Bytes*) -> ProcessResponse* { return nullptr; }},
    };
    for (const auto& [text, process] : rows) {
        SCOPED_TRACE(text);
        m_listener.frames.clear();
        command().onRequest = process;
        EXPECT_THAT(send({0x04, 'Q', 1, 2}), ElementsAre(8, 'Q', 1, 2, 1, 1, 0, 0));
        EXPECT_THAT(m_listener.frames, ElementsAre(debugFrame(text)));
        EXPECT_EQ(command().listener(), nullptr);
    }
}

TEST_F(HandlerBinaryTest, CodeOneIsAnsweredByNothingAndFreed) {
    command().onRequest = [](Bytes*) { return new ProcessResponse(1, "not sent"); };
    const unsigned int before = ProcessResponse::m_counter;
    EXPECT_THAT(send({0x04, 'Q', 1, 2}), IsEmpty());
    EXPECT_THAT(send({0x02, 'Q'}), IsEmpty());
    EXPECT_THAT(m_listener.frames, IsEmpty());
    EXPECT_EQ(ProcessResponse::m_counter, before);
}

TEST_F(HandlerBinaryTest, ACommandForgetsItsListenerWithTheRequest) {
    send({0x04, 'Q', 1, 2});
    EXPECT_EQ(command().listener(), nullptr);
    command().tavrin_sendAsyncDebug("too late");
    EXPECT_THAT(m_listener.frames, IsEmpty());
}

TEST_F(HandlerBinaryTest, WithoutAListenerTextsAreDropped) {
    command().onRequest = [](Bytes*) { return new ProcessResponse(2, "abc"); };
    Bytes known = {0x04, 'Q', 1, 2};
    Bytes unknown = {0x04, 'x', 1, 2};
    EXPECT_THAT(handler().handleCommand(&known, nullptr), ElementsAre(8, 'Q', 1, 2, 0, 0, 0, 2));
    EXPECT_THAT(handler().handleCommand(&unknown, nullptr), ElementsAre(8, 'x', 1, 2, 1, 1, 0, 0));
}
