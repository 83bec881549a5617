#include <gtest/gtest.h>

#include <string>

#include "support/DaemonTest.h"

namespace {

class SimpleCommandsTest : public DaemonTest {};

TEST_F(SimpleCommandsTest, AckIsAnsweredByAnEmptyText) {
    Connection station;
    for (const char* text : {"ack", "ack 1 2", "ack \"a b\"", "ack hex(06)"}) {
        SCOPED_TRACE(text);
        expectExchange(station, request(text), "\x02#\x03\n");
    }
    expectNothingMore(station);
}

struct Unknown {
    const char* text;
    const char* name;
};

constexpr Unknown kUnknown[] = {
    {"foo", "foo"},
    {"foo 1", "foo"},
    {"foo \"%s%n%d\" %s", "foo"},
    {"Status", "Status"},
    {"statu", "statu"},
    {"statuses", "statuses"},
    {"s", "s"},
    {"c", "c"},
    {"Error", "Error"},
    {"0x06", "0x06"},
    {"42", "42"},
    {"under_score", "under"},
    {"dotted.name", "dotted"},
};

TEST_F(SimpleCommandsTest, UnknownNamesAreComplainedOf) {
    Connection station;
    for (const Unknown& row : kUnknown) {
        SCOPED_TRACE(row.text);
        expectExchange(station, request(row.text),
                       "\x02#Info \"No Handler for the Command " + std::string(row.name) +
                           "\"\x03\n\x02#Error Error 0x10\x03\n");
    }
    expectNothingMore(station);
}

TEST_F(SimpleCommandsTest, UnknownNamesMayHaveAnyLength) {
    Connection station;
    for (const std::size_t length : {255U, 256U, 257U, 999U, 1000U, 1001U, 100000U, 5000000U}) {
        SCOPED_TRACE(length);
        const std::string name(length, 'n');
        expectExchange(station, request(name), unknown(name));
    }
    expectNothingMore(station);
}

TEST_F(SimpleCommandsTest, AnEchoedWordTravelsAsItCame) {
    Connection station;
    Connection other;
    // ETX, LF, STX, "#ok"
    expectExchange(station, request("port hex(030A02236F6B)"),
                   "\x02#Info \"unknown subcommand '\x03\n\x02#ok'\"\x03\n"
                   "\x02#port Error 0x1010000\x03\n");
    expectNothingMore(station);
    expectNothingMore(other);
}

} // namespace
