// Serial channels as a pipe, over the ASCII protocol.
#include "support/PassThroughUnit.h"

using ::testing::SizeIs;

namespace {

using SWriteCmdAsciiTest = PassThroughUnit;

} // namespace

TEST_F(SWriteCmdAsciiTest, MalformedLinesAreRefused) {
    const Rows<Words, const char*> rows = {
        {{"serial"}, "no sub command found"},
        {{"serial", "ope"}, "Command 111 not supported"},
        {{"serial", "Get", "1", "1"}, "Command 71 not supported"},
        {{"serial", ""}, "Command 0 not supported"},
        {{"serial", "%s%n"}, "Command 37 not supported"},
        {{"serial", "open"}, "Expected 3 Parameters min., received 1"},
        {{"serial", "open", "2"}, "Expected 5 Parameters, received 2"},
        {{"serial", "open", "2", "9600"}, "Expected 5 Parameters, received 3"},
        {{"serial", "close"}, "Expected 3 Parameter, received 1"},
        {{"serial", "close", "2", "3"}, "Expected 3 Parameter, received 3"},
        {{"serial", "send", "2"}, "Expected at least 3 Parameters, received 2"},
        {{"serial", "send", "2", "a", "b"}, "Expected at least 3 Parameters, received 4"},
        {{"serial", "get", "2"}, "Expected at least 3 Parameters, received 2"},
        {{"serial", "get", "2", "1", "1"}, "Expected at least 3 Parameters, received 4"},
        {{"serial", "getall"}, "Expected at least 2 Parameters, received 1"},
        {{"serial", "getall", "2", "1"}, "Expected at least 2 Parameters, received 3"},
    };
    for (const auto& [words, text] : rows)
        expectRefused(words, kGenericError, text);
    expectRefused(Tokens{}, kGenericError, "no sub command found");
    expectRefused({token("serial"), {}}, kGenericError, "Command 0 not supported");
    EXPECT_THAT(m_calls.all(), ::testing::IsEmpty());
}

TEST_F(SWriteCmdAsciiTest, AReadOfNoneOrTooManyIsRefused) {
    const Rows<const char*, const char*> rows = {{"0", "0"},   {"243", "243"}, {"255", "255"},
                                                 {"256", "0"}, {"499", "243"}, {"-1", "255"},
                                                 {"x", "0"}};
    for (const auto& [count, requested] : rows)
        for (const char* channel : {"2", "9", "240", "241"})
            expectRefused(
                {"serial", "get", channel, count}, kReadSize,
                std::string("Overflow of Requesting Bytes to Read, allowed: [1,247], requested: ") +
                    requested);
}

TEST_F(SWriteCmdAsciiTest, ChannelsAreRefusedAsOverTheOtherProtocol) {
    constexpr char kNoHandle[] = "Handle does not exist, errorcode: 1285";
    expectRefused({"serial", "open", "0", "115200", "0"}, kOpenFailed,
                  "Channel is a already in use by Bios");
    expectRefused({"serial", "open", "256", "115200", "0"}, kOpenFailed,
                  "Channel is a already in use by Bios");
    expectRefused({"serial", "open", "4", "115200", "0"}, kNoSuchChannel, "Interface id 4 unknown");
    expectRefused({"serial", "open", "2", "115200", "2"}, kNoSuchParity, "Could not detect Parity");
    expectRefused({"serial", "open", "2", "300", "0"}, kOpenFailed,
                  "Invalid Baudrate 300, errorcode: 1281");
    expectRefused({"serial", "open", "2", "4294976896", "0"}, kOpenFailed,
                  "Invalid Baudrate 2147483647, errorcode: 1281");
    expectRefused({"serial", "open", "0x100000002", "9600", "0"}, kNoSuchChannel,
                  "Interface id 255 unknown");
    expectRefused({"serial", "close", "4"}, kIoFailed, kNoHandle);
    expectRefused({"serial", "send", "4", "x"}, kIoFailed, kNoHandle);
    expectRefused({"serial", "get", "4", "1"}, kIoFailed, kNoHandle);
    expectRefused({"serial", "getall", "4"}, kIoFailed, kNoHandle);
    expectRefused({"serial", "get", "1", "1"}, kIoFailed, "Serial port not open., errorcode: 1024");
}

TEST_F(SWriteCmdAsciiTest, NumbersMayBeWrittenInSeveralWays) {
    expectAnswer(Words{"serial", "open", "0x102", "0x2580", "0x10D"}, "serial ok");
    EXPECT_EQ(::cfgetospeed(&m_calls.beforeRaw), static_cast<speed_t>(B9600));
    EXPECT_EQ(m_calls.beforeRaw.c_cflag & (CSIZE | PARENB | PARODD | CSTOPB),
              static_cast<tcflag_t>(CS7 | PARENB | CSTOPB));
    EXPECT_THAT(m_lines[2].opened(), SizeIs(1));
    expectAnswer(Words{"serial", "close", "02"}, "serial ok");
    EXPECT_THAT(m_lines[2].opened(), ::testing::IsEmpty());
}

TEST_F(SWriteCmdAsciiTest, MoreWordsAfterAnOpenDoNotMatter) {
    expectAnswer(Words{"serial", "open", "2", "9600", "0", "more"}, "serial ok");
}

TEST_F(SWriteCmdAsciiTest, ASubCommandIsKnownByItsBeginning) {
    expectAnswer(Words{"serial", "opening", "2", "9600", "0"}, "serial ok");
    m_lines[2].send("abcdef", 6);
    expectAnswer(Words{"serial", "getting", "2", "1"}, "serial get 0x02 base64(YQ==)");
    expectAnswer(Words{"serial", "geta", "2", "1"}, "serial get 0x02 base64(Yg==)");
    expectAnswer(Words{"serial", "getal", "2"}, "serial getall 0x02 base64(Y2RlZg==)");
    expectAnswer(Words{"serial", "getalx", "2"}, "serial getall 0x02 base64()");
    expectAnswer(Words{"serial", "sender", "2", "x"}, "serial ok");
    expectAnswer(Words{"serial", "closed", "2"}, "serial ok");
}

TEST_F(SWriteCmdAsciiTest, DataAreSentAsTheFrontEndDeliversThem) {
    expectAnswer(Words{"serial", "open", "1", "115200", "0"}, "serial ok");
    const Bytes data = {0, 0xFF, 'a', 0x0A, 0x80};
    expectAnswer(lineWithData({"serial", "send", "1"}, data), "serial ok");
    EXPECT_EQ(bytesOf(m_lines[1].receive(data.size())), data);
    // A word comes with its terminating zero.
    expectAnswer(Words{"serial", "send", "1", "word"}, "serial ok");
    EXPECT_EQ(m_lines[1].receive(5), std::string("word\0", 5));
    expectAnswer(lineWithData({"serial", "send", "1"}, {}), "serial ok");
    expectAnswer(lineWithData({"serial", "send", "1"}, Bytes(1024, 'x')), "serial ok");
    EXPECT_EQ(m_lines[1].receive(1024), std::string(1024, 'x'));
    EXPECT_TRUE(m_lines[1].isSilent());
}

TEST_F(SWriteCmdAsciiTest, FetchedBytesAreToldInBase64) {
    expectAnswer(Words{"serial", "open", "3", "115200", "0"}, "serial ok");
    expectAnswer(Words{"serial", "getall", "3"}, "serial getall 0x03 base64()");
    expectAnswer(Words{"serial", "get", "3", "2"}, "serial get 0x03 base64(AAA=)");
    m_lines[3].send("abc", 3);
    expectAnswer(Words{"serial", "get", "3", "5"}, "serial get 0x03 base64(YWJjAAA=)");
    m_lines[3].send("abc", 3);
    expectAnswer(Words{"serial", "getall", "3"}, "serial getall 0x03 base64(YWJj)");
    m_lines[3].send(std::string(300, 'x'), 300);
    expectAnswer(Words{"serial", "get", "3", "242"},
                 "serial get 0x03 " + command().ascii_buildBase64String(Bytes(242, 'x')));
    expectAnswer(Words{"serial", "getall", "3"},
                 "serial getall 0x03 " + command().ascii_buildBase64String(Bytes(58, 'x')));
}

TEST_F(SWriteCmdAsciiTest, SuccessesWithoutDataCarryNothing) {
    for (const Words& words : {Words{"serial", "open", "2", "9600", "0"},
                               Words{"serial", "send", "2", "x"}, Words{"serial", "close", "2"}})
        expectSuccess(*run(words));
}
