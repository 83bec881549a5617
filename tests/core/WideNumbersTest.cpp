// Numbers and ids with their upper bits set, which a machine with narrow longs or an unsigned char could
// take for something else.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <climits>
#include <cstdint>
#include <string>

#include "support/Rows.h"
#include "support/RunningHandler.h"

using ::testing::ElementsAre;

static_assert(sizeof(off_t) == sizeof(std::int64_t), "files and devices are larger than 2 GiB");
static_assert(sizeof(blkcnt_t) == sizeof(std::int64_t), "a device's blocks are counted in it");
static_assert(sizeof(decltype(stat::st_size)) == sizeof(std::int64_t), "files are larger than 2 GiB");

namespace {

using WideNumbersTest = RunningHandler;

} // namespace

TEST_F(WideNumbersTest, ANumberOf32BitsKeepsItsBits) {
    const Rows<const char*, std::uint32_t> rows = {
        {"0x7FFFFFFF", 0x7FFFFFFF},   {"0x80000000", 0x80000000},   {"0x9ABCDEF0", 0x9ABCDEF0},
        {"0xFFFFFFFF", 0xFFFFFFFF},   {"2147483648", 0x80000000},   {"4294967295", 0xFFFFFFFF},
        {"020000000000", 0x80000000}, {"037777777777", 0xFFFFFFFF}, {"-1", 0xFFFFFFFF},
        {"-2147483648", 0x80000000},
    };
    for (const auto& [text, bits] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(static_cast<std::uint32_t>(command().ascii_getInt(token(text))), bits);
    }
}

TEST_F(WideNumbersTest, ANumberBeyond32BitsIsTheNearestInt) {
    for (const char* text : {"4294967296", "0x100000000", "0x100000001", "040000000000",
                             "18446744073709551616", "0xFFFFFFFFFFFFFFFF", "99999999999999999999999999"})
        EXPECT_EQ(command().ascii_getInt(token(text)), INT_MAX) << text;
    for (const char* text :
         {"-2147483649", "-4294967296", "-0x100000000", "-99999999999999999999999999"})
        EXPECT_EQ(command().ascii_getInt(token(text)), INT_MIN) << text;
}

TEST_F(WideNumbersTest, AnIdWithItsUpperBitSetIsFound) {
    for (const int number : {0x81, 0xE4, 0xFE}) {
        SCOPED_TRACE(number);
        const auto id = static_cast<unsigned char>(number);
        const ScriptedCommand& high =
            ScriptedCommand::make(static_cast<char>(id), "high" + std::to_string(number), true);
        // The interface has signed ids, whatever a char is.
        EXPECT_EQ(high.tavrin_getName(), static_cast<signed char>(id));
        EXPECT_THAT(send({0x04, id, 0x81, 0xFE}), ElementsAre(8, id, 0x81, 0xFE, 0, 0, 0, 0));
    }
}

TEST_F(WideNumbersTest, AnUnknownIdWithItsUpperBitSetIsNamed) {
    EXPECT_THAT(send({0x04, 0x9A, 1, 2}), ElementsAre(8, 0x9A, 1, 2, 0x01, 0x01, 0x00, 0x00));
    ASSERT_EQ(m_listener.frames.size(), 1u);
    const Bytes& frame = m_listener.frames.front();
    EXPECT_THAT(std::string(frame.begin(), frame.end()),
                ::testing::HasSubstr("No Handler for the Command 0x9A"));
}

TEST_F(WideNumbersTest, TheLongestRequestReachesItsCommand) {
    Bytes received;
    command().onRequest = [&](Bytes* request) {
        received = *request;
        return new ProcessResponse(ProcessResponse::kSuccess);
    };
    Bytes request(UCHAR_MAX, 0xFF);
    request[1] = 'Q';
    EXPECT_THAT(send(request), ElementsAre(8, 'Q', 0xFF, 0xFF, 0, 0, 0, 0));
    EXPECT_EQ(received, request);
}

TEST_F(WideNumbersTest, ACodeWithItsUpperBitSetIsAnsweredAsItIs) {
    command().onRequest = [](Bytes*) { return new ProcessResponse(0x9ABCDEF0, ""); };
    EXPECT_THAT(send({0x04, 'Q', 1, 2}), ElementsAre(8, 'Q', 1, 2, 0x9A, 0xBC, 0xDE, 0xF0));
    command().onTokens = [](auto&) { return new ProcessResponse(0x9ABCDEF0, ""); };
    EXPECT_EQ(send({"scripted"}), "scripted Error 0x9ABCDEF0");
}
