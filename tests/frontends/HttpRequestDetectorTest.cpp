#include "frontends/HttpRequestDetector.h"

#include <gtest/gtest.h>

#include <string>

using Detector = HttpRequestDetector;

namespace {

struct Row {
    std::string bytes;
    Detector::Verdict verdict;
};

const std::string kLongTarget(100000, 'x');

const Row kRows[] = {
    // Requests, as far as the detector has to read them.
    {"GET / HTTP/", Detector::HttpRequest},
    {"GET / HTTP/1.1\r\nHost: localhost:15051\r\n\r\n", Detector::HttpRequest},
    {"POST / HTTP/1.1\r\n\r\n\x02"
     "exec\x03\n",
     Detector::HttpRequest},
    {"POST /\"#$%&'()*+,-./:;<=>?@[]^_`{|}~ HTTP/1.0", Detector::HttpRequest},
    {"OPTIONS * HTTP/1.1", Detector::HttpRequest},
    {"HEAD http://localhost:15051/ HTTP/1.1", Detector::HttpRequest},
    {"PUT /x HTTP/2", Detector::HttpRequest},
    {"CONNECT localhost:15051 HTTP/1.1", Detector::HttpRequest},
    {"X / HTTP/1.1", Detector::HttpRequest},
    {"get / HTTP/1.1", Detector::HttpRequest},
    {"!#$%&'*+-.^_`|~09azAZ / HTTP/1.1", Detector::HttpRequest},
    {"GET /\xC3\xBC\xFF HTTP/1.1", Detector::HttpRequest},
    {"GET /" + kLongTarget + " HTTP/1.1", Detector::HttpRequest},
    {std::string(100000, 'M') + " / HTTP/1.1", Detector::HttpRequest},

    // Beginnings of requests.
    {"", Detector::Undecided},
    {"GET", Detector::Undecided},
    {"GET ", Detector::Undecided},
    {"GET /", Detector::Undecided},
    {"GET / ", Detector::Undecided},
    {"GET / HTTP", Detector::Undecided},
    {"GET /" + kLongTarget, Detector::Undecided},
    {"#<parameter>", Detector::Harmless},
    {"#x", Detector::Undecided},

    // What stations send, and noise.
    {"\x02status\x03\n", Detector::Harmless},
    {"\x02GET / HTTP/1.1\r\n", Detector::Harmless},
    {"#<frame>1A:status\x03\n", Detector::Harmless},
    {"\n", Detector::Harmless},
    {"\r\nGET / HTTP/1.1", Detector::Harmless},
    {" GET / HTTP/1.1", Detector::Harmless},
    {"hello world\n", Detector::Harmless},
    {"hello\x02"
     "status\x03\n",
     Detector::Harmless},
    {"GET\n", Detector::Harmless},
    {"GET\t/ HTTP/1.1", Detector::Harmless},
    {"GET  / HTTP/1.1", Detector::Harmless},
    {"GET /\n", Detector::Harmless},
    {"GET /\r\n", Detector::Harmless},
    {"GET /\t HTTP/1.1", Detector::Harmless},
    {"GET /\x02status HTTP/1.1", Detector::Harmless},
    {"GET /\x7F HTTP/1.1", Detector::Harmless},
    {std::string("GET /\0 HTTP/1.1", 15), Detector::Harmless},
    {std::string("G\0T / HTTP/1.1", 14), Detector::Harmless},
    {"GET /  HTTP/1.1", Detector::Harmless},
    {"GET / http/1.1", Detector::Harmless},
    {"foo bar HTTX/", Detector::Harmless},
    {"foo bar baz\n", Detector::Harmless},
    {"GET / HTTP 1.1", Detector::Harmless},
    {"G(T / HTTP/1.1", Detector::Harmless},
    {"G\xC3T / HTTP/1.1", Detector::Harmless},
};

std::string nameOf(const Row& row) {
    return ::testing::PrintToString(row.bytes.substr(0, 60));
}

Detector::Verdict feed(Detector& detector, const std::string& bytes) {
    return detector.feed(bytes.data(), bytes.size());
}

} // namespace

TEST(HttpRequestDetectorTest, TellsRequestsFromWhatStationsSend) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(nameOf(row));
        Detector detector;
        EXPECT_EQ(feed(detector, row.bytes), row.verdict);
    }
}

TEST(HttpRequestDetectorTest, ItDoesNotMatterHowTheBytesArrive) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(nameOf(row));
        Detector byteByByte;
        Detector::Verdict verdict = feed(byteByByte, "");
        for (const char byte : row.bytes)
            verdict = byteByByte.feed(&byte, 1);
        EXPECT_EQ(verdict, row.verdict);
        if (row.bytes.size() > 100)
            continue; // every split of a long one takes too long
        for (std::size_t split = 0; split <= row.bytes.size(); ++split) {
            SCOPED_TRACE(split);
            Detector detector;
            feed(detector, row.bytes.substr(0, split));
            EXPECT_EQ(feed(detector, row.bytes.substr(split)), row.verdict);
        }
    }
}

TEST(HttpRequestDetectorTest, AVerdictStays) {
    Detector request;
    EXPECT_EQ(feed(request, "GET / HTTP/1.1\r\n"), Detector::HttpRequest);
    EXPECT_EQ(feed(request, "\x02status\x03\n"), Detector::HttpRequest);
    EXPECT_EQ(feed(request, ""), Detector::HttpRequest);
    Detector harmless;
    EXPECT_EQ(feed(harmless, "\x02"), Detector::Harmless);
    EXPECT_EQ(feed(harmless, "GET / HTTP/1.1\r\n"), Detector::Harmless);
    EXPECT_EQ(feed(harmless, ""), Detector::Harmless);
}
