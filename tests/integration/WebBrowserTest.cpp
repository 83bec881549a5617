#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"

namespace {

constexpr char kTrace[] = "/tmp/was-run";
const std::string kBody = request("exec command 5 \"touch /tmp/was-run\"");

class WebBrowserTest : public DaemonTest {
protected:
    /// Commands run one after the other, so a command that had been taken up would have run by now.
    void expectNothingRan() {
        Connection station;
        expectExchange(station, request("ack"), answer(""));
        EXPECT_FALSE(exists(kTrace));
    }
};

std::string head(const std::string& requestLine) {
    return requestLine + "\r\nHost: 127.0.0.1:15051\r\nContent-Type: text/plain\r\nContent-Length: " +
           std::to_string(kBody.size()) + "\r\n\r\n";
}

const char* const kRequestLines[] = {
    "GET / HTTP/1.1",
    "HEAD / HTTP/1.1",
    "POST / HTTP/1.1",
    "PUT /some/path?and=query HTTP/1.1",
    "DELETE / HTTP/1.1",
    "OPTIONS * HTTP/1.1",
    "CONNECT 127.0.0.1:15051 HTTP/1.1",
    "TRACE / HTTP/1.0",
    "PATCH http://127.0.0.1:15051/ HTTP/1.1",
    "PRI * HTTP/2.0",
    "get / HTTP/1.1",
    "M-SEARCH!#$%&'*+.^_`|~ /\xC3\xA4 HTTP/1.1",
};

TEST_F(WebBrowserTest, GetsNoAnswerAndRunsNothing) {
    for (const char* line : kRequestLines) {
        SCOPED_TRACE(line);
        Connection browser;
        browser.send(head(line) + kBody);
        EXPECT_EQ(browser.receiveUntilClosed(), "");
    }
    expectNothingRan();
}

TEST_F(WebBrowserTest, IsSentAwayBeforeItsBody) {
    for (const char* line : kRequestLines) {
        SCOPED_TRACE(line);
        Connection browser;
        browser.send(head(line));
        EXPECT_EQ(browser.receiveUntilClosed(), "");
        browser.trySend(kBody);
    }
    expectNothingRan();
}

TEST_F(WebBrowserTest, IsRecognisedByteByByte) {
    const std::string start = "POST / HTTP/";
    Connection browser;
    for (const char byte : start) {
        browser.send({&byte, 1});
        browser.waitUntilTaken();
    }
    EXPECT_EQ(browser.receiveUntilClosed(), "");
    browser.trySend(kBody);
    expectNothingRan();
}

TEST_F(WebBrowserTest, IsRecognisedWhereverItsRequestLineIsSplit) {
    const std::string all = head("POST / HTTP/1.1") + kBody;
    for (std::size_t at = 1; at < std::string("POST / HTTP/").size(); ++at) {
        SCOPED_TRACE(at);
        Connection browser;
        browser.send(all.substr(0, at));
        browser.waitUntilTaken();
        browser.trySend(all.substr(at));
        EXPECT_EQ(browser.receiveUntilClosed(), "");
    }
    expectNothingRan();
}

TEST_F(WebBrowserTest, OtherNoiseIsServed) {
    const char* const kNoise[] = {
        "hello world ",
        "GET",
        "GET ",
        "GET /",
        "GET / ",
        "GET / HTTP",
        "GET  / HTTP/1.1",
        " GET / HTTP/1.1",
        "GET /\tHTTP/1.1",
        "(GET) / HTTP/1.1",
        "\r\nGET / HTTP/1.1",
        "GET / http/1.1",
        "GET / HTTQ/1.1",
        "SSH-2.0-client\r\n",
        "\x16\x01\x01",
    };
    for (const char* noise : kNoise) {
        SCOPED_TRACE(noise);
        Connection station;
        expectExchange(station, noise + request("one"), unknown("one"));
        expectNothingMore(station);
    }
}

TEST_F(WebBrowserTest, OnlyTheBeginningOfAConnectionCounts) {
    Connection station;
    expectExchange(station, request("one"), unknown("one"));
    expectExchange(station, "GET / HTTP/1.1\r\n\r\n" + request("two"), unknown("two"));
    expectNothingMore(station);
}

} // namespace
