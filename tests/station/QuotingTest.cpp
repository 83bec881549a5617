#include "client/Quoting.h"

#include <gtest/gtest.h>

#include "FailureKind.h"

namespace station {
namespace {

using testing::Values;

struct Travels {
    std::string argument;
    std::string token;

    friend void PrintTo(const Travels& row, std::ostream* out) {
        *out << testing::PrintToString(row.argument);
    }
};

class QuotingTravels : public testing::TestWithParam<Travels> {};

TEST_P(QuotingTravels, As) {
    EXPECT_EQ(quoteArgument(GetParam().argument), GetParam().token);
}

INSTANTIATE_TEST_SUITE_P(PlainWord, QuotingTravels,
                         Values(Travels{"read", "read"}, Travels{"0x50", "0x50"}, Travels{"_", "_"},
                                Travels{"AZaz09_", "AZaz09_"}, Travels{"hex", "hex"},
                                Travels{"base64", "base64"}));

INSTANTIATE_TEST_SUITE_P(
    Quoted, QuotingTravels,
    Values(Travels{"-1", "\"-1\""}, Travels{"1.5", "\"1.5\""}, Travels{"/dev/x", "\"/dev/x\""},
           Travels{"ls -l", "\"ls -l\""}, Travels{" ", "\" \""}, Travels{"it's", "\"it's\""},
           Travels{"a\\b", "\"a\\b\""}, Travels{"a;b|c&d", "\"a;b|c&d\""},
           Travels{"--json", "\"--json\""}, Travels{"gr\xC3\xBC\xC3\x9F", "\"gr\xC3\xBC\xC3\x9F\""},
           Travels{"\xFF\x80", "\"\xFF\x80\""},
           // Not the unit's own notation: only the lower-case one directly before the parenthesis is.
           Travels{"HEX(01)", "\"HEX(01)\""}, Travels{"hex (01)", "\"hex (01)\""},
           Travels{"xhex(01)", "\"xhex(01)\""}, Travels{"Base64(QQ==)", "\"Base64(QQ==)\""},
           Travels{"base64 (QQ==)", "\"base64 (QQ==)\""}));

INSTANTIATE_TEST_SUITE_P(AsItIs, QuotingTravels,
                         Values(Travels{"hex(01)", "hex(01)"}, Travels{"hex(00 1f AB)", "hex(00 1f AB)"},
                                Travels{"hex( )", "hex( )"}, Travels{"hex(123)", "hex(123)"},
                                Travels{"base64(QUJD)", "base64(QUJD)"},
                                Travels{"base64(a+/Z09==)", "base64(a+/Z09==)"}));

struct Refused {
    std::string argument;
    std::string message;

    friend void PrintTo(const Refused& row, std::ostream* out) {
        *out << testing::PrintToString(row.argument);
    }
};

class QuotingRefuses : public testing::TestWithParam<Refused> {};

TEST_P(QuotingRefuses, With) {
    const Refused& refused = GetParam();
    EXPECT_THAT(failureOf([&] { quoteArgument(refused.argument); }),
                FailsWith(Failure::Kind::InvalidRequest, refused.message));
}

INSTANTIATE_TEST_SUITE_P(Empty, QuotingRefuses,
                         Values(Refused{"", "an empty argument cannot be sent"},
                                Refused{"hex()", "the unit drops empty arguments"},
                                Refused{"base64()", "the unit drops empty arguments"}));

INSTANTIATE_TEST_SUITE_P(
    QuotationMark, QuotingRefuses,
    Values(Refused{"a\"b",
                   "argument 'a\"b' holds a double quotation mark, which cannot be quoted; send "
                   "its bytes as base64(...)"},
           Refused{"\"", "send its bytes as base64(...)"},
           Refused{"\"quoted\"", "double quotation mark"}, Refused{"hex(\")", "double quotation mark"}));

INSTANTIATE_TEST_SUITE_P(ControlCharacter, QuotingRefuses,
                         Values(Refused{std::string("a\0b", 3), "control character 0x00 as its byte 2"},
                                Refused{"\x01", "control character 0x01 as its byte 1"},
                                Refused{"ab\x02", "control character 0x02 as its byte 3"},
                                Refused{"\x03", "0x03"}, Refused{"a\tb", "0x09"},
                                Refused{"a\nb", "0x0A"}, Refused{"\x1F", "0x1F"},
                                Refused{"\x7F", "cannot be quoted; send its bytes as base64(...)"},
                                Refused{"hex(01\t02)", "0x09"}, Refused{"base64(QUJD\nQUJD)", "0x0A"},
                                Refused{"\"\x1B[2J\"", "control character 0x1B as its byte 2"}));

INSTANTIATE_TEST_SUITE_P(
    MalformedBytes, QuotingRefuses,
    Values(Refused{"hex(zz)", "argument 'hex(zz)' may hold only hex digits and blanks"},
           Refused{"hex(01-02)", "encode it as base64(...)"}, Refused{"hex(0x01)", "only hex digits"},
           Refused{"hex(01)(02)", "only hex digits"}, Refused{"hex(01", "does not end with )"},
           Refused{"hex(", "does not end with )"}, Refused{"hex(01) ", "does not end with )"},
           Refused{"base64(QQ QQ)", "may hold only A-Z a-z 0-9 + / ="},
           Refused{"base64(Q-_Q)", "may hold only A-Z a-z 0-9 + / ="},
           Refused{"base64(QQ==", "does not end with )"}));

TEST(Quoting, TakesAsMuchHexAsTheUnitReads) {
    const std::string longest = "hex(" + std::string(2048, 'A') + ")";
    EXPECT_EQ(quoteArgument(longest), longest);
}

TEST(Quoting, RefusesMoreHexThanTheUnitReads) {
    EXPECT_THAT(failureOf([] { quoteArgument("hex(" + std::string(2049, 'A') + ")"); }),
                FailsWith(Failure::Kind::InvalidRequest, "send the bytes as base64(...)"));
}

TEST(Quoting, TakesBase64OfAnyLength) {
    const std::string argument = "base64(" + std::string(100000, 'A') + ")";
    EXPECT_EQ(quoteArgument(argument), argument);
}

struct Bytes {
    std::string argument;
    std::string bytes;

    friend void PrintTo(const Bytes& row, std::ostream* out) {
        *out << testing::PrintToString(row.argument);
    }
};

class ArgumentBytes : public testing::TestWithParam<Bytes> {};

TEST_P(ArgumentBytes, Are) {
    EXPECT_EQ(argumentBytes(GetParam().argument), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Argument, ArgumentBytes,
                         Values(Bytes{"", ""}, Bytes{"text", "text"}, Bytes{"a\nb\"", "a\nb\""},
                                Bytes{"hex", "hex"}, Bytes{"hex(01 fF)", "\x01\xFF"},
                                Bytes{"hex(0 1 2 3)", "\x01\x23"},
                                Bytes{"hex(00)", std::string(1, '\0')}, Bytes{"base64(QUJD)", "ABC"},
                                Bytes{"base64(QQ==)", "A"}));

class ArgumentBytesRefuse : public testing::TestWithParam<Refused> {};

TEST_P(ArgumentBytesRefuse, Argument) {
    EXPECT_THAT(failureOf([] { argumentBytes(GetParam().argument); }),
                FailsWith(Failure::Kind::InvalidRequest, GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(Argument, ArgumentBytesRefuse,
                         Values(Refused{"hex(123)", "holds an unpaired hex digit"},
                                Refused{"hex(zz)", "may hold only hex digits and blanks"},
                                Refused{"hex(01", "does not end with )"}, Refused{"hex()", "is empty"},
                                Refused{"base64()", "is empty"},
                                Refused{"base64(QQ=)", "is not valid base64"},
                                Refused{"base64(Q)", "is not valid base64"},
                                Refused{"base64(Q Q)", "may hold only A-Z"}));

} // namespace
} // namespace station
