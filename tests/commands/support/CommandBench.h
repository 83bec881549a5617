#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/AbstractCmd.h"
#include "support/FrontEnd.h"
#include "support/Rows.h"

using Response = std::unique_ptr<ProcessResponse>;
using Words = std::vector<std::string>;

constexpr unsigned int kGenericError = 0x01010000;

/// A number as frames carry it.
Bytes bigEndian(unsigned int number);
/// One behind the other.
Bytes joined(Bytes first, const Bytes& second);
Bytes bytesOf(const std::string& text);
/// The frame that answers a request of four bytes or more with success, and with this behind it.
Bytes answerTo(const Bytes& request, const Bytes& data = {});
/// The words of a line, and bytes as its last argument.
Tokens lineWithData(const Words& words, const Bytes& data);

/// Runs a request as the dispatcher would.
Response runRequest(AbstractCmd& command, Bytes frame);
Response runRequest(AbstractCmd& command, Tokens line);

/// The frame that a response of the binary protocol carries.
const Bytes& frameOf(const ProcessResponse& response);
/// The text that a response of the ASCII protocol carries.
const std::string& answerOf(const ProcessResponse& response);

/// That a response is a success, and carries this.
void expectSuccess(const ProcessResponse& response);
void expectSuccess(const ProcessResponse& response, const Bytes& frame);
void expectSuccess(const ProcessResponse& response, const std::string& answer);

/// That a response carries an error and, unless a protocol is named, nothing else.
void expectError(const ProcessResponse& response, unsigned int code, const std::string& text,
                 char protocol = 0);
inline void expectError(const Response& response, unsigned int code, const std::string& text,
                        char protocol = 0) {
    expectError(*response, code, text, protocol);
}

/// That a station gets the text and then the code.
void expectErrorSent(FrontEnd& frontEnd, const Bytes& frame, unsigned int code, const std::string& text);
void expectErrorSent(FrontEnd& frontEnd, const Tokens& line, unsigned int code, const std::string& text);

/// That the response to a request carries this error, and that a station gets it. A frame with nothing
/// to echo is reported and thrown instead; what names no command is only run.
void expectRefused(AbstractCmd& command, FrontEnd& frontEnd, const Bytes& frame, unsigned int code,
                   const std::string& text);
void expectRefused(AbstractCmd& command, FrontEnd& frontEnd, const Tokens& line, unsigned int code,
                   const std::string& text);

/// A request that is refused, as a row of a table.
template <typename Request>
struct Refusal {
    Request request;
    unsigned int code;
    std::string text;
};
using RefusedFrames = std::vector<Refusal<Bytes>>;
using RefusedLines = std::vector<Refusal<Words>>;

/// The bench for one command, in a fixture with what the command needs. A case leaves no response over.
template <typename Command, typename Unit = ::testing::Test, typename Station = FrontEnd>
class CommandTest : public Unit {
protected:
    CommandTest() { command(); }
    ~CommandTest() override { EXPECT_EQ(ProcessResponse::m_counter, m_responses); }

    static Command& command() { return *Command::getInstance(); }

    static Response run(Bytes frame) { return runRequest(command(), std::move(frame)); }
    static Response run(Tokens line) { return runRequest(command(), std::move(line)); }
    static Response run(const Words& words) { return run(tokens(words)); }

    Bytes send(Bytes frame) { return m_frontEnd.send(std::move(frame)); }
    std::string send(Tokens line) { return m_frontEnd.send(std::move(line)); }
    std::string send(const Words& words) { return send(tokens(words)); }

    /// That the response to a request carries success, and this behind it.
    static void expectResponse(const Bytes& frame, const Bytes& data = {}) {
        SCOPED_TRACE(::testing::PrintToString(frame));
        expectSuccess(*run(frame), answerTo(frame, data));
    }
    static void expectResponse(const Tokens& line, const std::string& answer) {
        SCOPED_TRACE(::testing::PrintToString(line));
        expectSuccess(*run(line), answer);
    }
    static void expectResponse(const Words& words, const std::string& answer) {
        expectResponse(tokens(words), answer);
    }

    /// That a station gets this answer and nothing before it.
    void expectAnswer(const Bytes& frame, const Bytes& answer) {
        SCOPED_TRACE(::testing::PrintToString(frame));
        EXPECT_EQ(send(frame), answer);
        EXPECT_THAT(m_frontEnd.frames, ::testing::IsEmpty());
    }
    void expectAnswer(const Tokens& line, const std::string& answer) {
        SCOPED_TRACE(::testing::PrintToString(line));
        EXPECT_EQ(send(line), answer);
        EXPECT_THAT(m_frontEnd.lines, ::testing::IsEmpty());
    }
    void expectAnswer(const Words& words, const std::string& answer) {
        expectAnswer(tokens(words), answer);
    }

    /// That a station gets this behind the success of its request.
    void expectDone(const Bytes& frame, const Bytes& data = {}) {
        expectAnswer(frame, answerTo(frame, data));
    }

    void expectRefused(const Bytes& frame, unsigned int code, const std::string& text) {
        ::expectRefused(command(), m_frontEnd, frame, code, text);
    }
    void expectRefused(const Tokens& line, unsigned int code, const std::string& text) {
        ::expectRefused(command(), m_frontEnd, line, code, text);
    }
    void expectRefused(const Words& words, unsigned int code, const std::string& text) {
        expectRefused(tokens(words), code, text);
    }
    template <typename Request>
    void expectRefused(const std::vector<Refusal<Request>>& rows) {
        for (const Refusal<Request>& row : rows)
            expectRefused(row.request, row.code, row.text);
    }
    /// That no request at all is refused by the command.
    void expectNothingRefused(unsigned int code, const std::string& text) {
        Bytes nothing;
        expectError(Response(command().process(&nothing)), code, text);
        expectError(Response(command().process(static_cast<Bytes*>(nullptr))), code, text);
    }
    /// That several are refused alike.
    template <typename Request>
    void expectEachRefused(const std::vector<Request>& requests, unsigned int code,
                           const std::string& text) {
        for (const Request& request : requests)
            expectRefused(request, code, text);
    }

    Station m_frontEnd;

private:
    const unsigned int m_responses = ProcessResponse::m_counter;
};
