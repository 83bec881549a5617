#include "client/Request.h"

#include <gtest/gtest.h>

#include "FailureKind.h"

namespace station {
namespace {

using testing::Values;

struct Encoded {
    std::string name;
    std::vector<std::string> arguments;
    std::string bytes;

    friend void PrintTo(const Encoded& row, std::ostream* out) {
        *out << testing::PrintToString(row.bytes);
    }
};

class RequestEncodes : public testing::TestWithParam<Encoded> {};

TEST_P(RequestEncodes, To) {
    const Request request(GetParam().name, GetParam().arguments);
    EXPECT_EQ(request.bytes(), GetParam().bytes);
    EXPECT_EQ(request.name(), GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(
    Line, RequestEncodes,
    Values(Encoded{"status", {}, "\x02status\x03\n"}, Encoded{"S", {}, "\x02S\x03\n"},
           Encoded{"0", {}, "\0020\x03\n"}, Encoded{"status", {"03"}, "\x02status 03\x03\n"},
           Encoded{"exec", {"command", "-1", "ls -l"}, "\2exec command \"-1\" \"ls -l\"\x03\n"},
           Encoded{"i2c", {"write", "0", "0x50", "hex(00 1F)"}, "\x02i2c write 0 0x50 hex(00 1F)\x03\n"},
           Encoded{"memory", {"base64(QUJD)"}, "\x02memory base64(QUJD)\x03\n"}));

class RequestRefusesName : public testing::TestWithParam<std::string> {};

TEST_P(RequestRefusesName, ThatTheUnitDoesNotRead) {
    EXPECT_FALSE(isCommandName(GetParam()));
    EXPECT_THAT(failureOf([] { Request(GetParam(), {}); }),
                FailsWith(Failure::Kind::InvalidRequest,
                          "invalid command name '" + GetParam() + "': only letters and digits"));
}

INSTANTIATE_TEST_SUITE_P(Name, RequestRefusesName,
                         Values("", "a_b", "a b", "-x", "a\x03", "st\xC3\xA4tus", "/bin/ls", "a.b"));

TEST(Request, RefusesAnArgumentThatCannotTravel) {
    EXPECT_THAT(failureOf([] {
                    Request("exec", {"command", "5", "echo \"a\""});
                }),
                FailsWith(Failure::Kind::InvalidRequest, "base64(...)"));
}

} // namespace
} // namespace station
