// Serial channels as a pipe, over the binary protocol.
#include <algorithm>
#include <filesystem>

#include "support/PassThroughUnit.h"

using ::testing::SizeIs;

namespace {

constexpr char kNoHandle[] = "Handle does not exist, errorcode: 1285";
constexpr char kNotOpen[] = "Serial port not open., errorcode: 1024";
constexpr char kInUse[] = "Channel is a already in use by Bios";

Bytes getRequest(unsigned char channel, unsigned char count) {
    return {5, 'S', 3, channel, count};
}

Bytes getAllRequest(unsigned char channel) {
    return {4, 'S', 4, channel};
}

Bytes closeRequest(unsigned char channel) {
    return {4, 'S', 1, channel};
}

using SWriteCmdBinaryTest = PassThroughUnit;

} // namespace

TEST_F(SWriteCmdBinaryTest, MalformedRequestsAreRefused) {
    const Rows<Bytes, const char*> rows = {
        {{2, 'S'}, "Command -1 not supported"},
        {{3, 'S', 5}, "Command 5 not supported"},
        {{4, 'S', 5, 1}, "Command 5 not supported"},
        {{5, 'S', 255, 1, 1}, "Command 255 not supported"},
        {{3, 'S', 0}, "Expected 4 Bytes min., received 3"},
        {{4, 'S', 0, 2}, "Expected 9 Bytes min., received 4"},
        {{8, 'S', 0, 2, 0, 1, 0xC2, 0}, "Expected 9 Bytes min., received 8"},
        {{3, 'S', 1}, "Expected 4 Bytes, received 3"},
        {{5, 'S', 1, 2, 0}, "Expected 4 Bytes, received 5"},
        {{3, 'S', 2}, "Expected at least 5 Bytes, received 3"},
        {{4, 'S', 2, 2}, "Expected at least 5 Bytes, received 4"},
        {{4, 'S', 3, 2}, "Expected 5 Bytes, received 4"},
        {{6, 'S', 3, 2, 1, 0}, "Expected 5 Bytes, received 6"},
        {{3, 'S', 4}, "Expected at least 4 Bytes, received 3"},
        {{4, 'S', 3, kWlan}, "Expected 5 Bytes, received 4"},
        {{5, 'S', 1, kBluetooth, 0}, "Expected 4 Bytes, received 5"},
    };
    for (const auto& [frame, text] : rows)
        expectRefused(frame, kGenericError, text);
    EXPECT_THAT(m_calls.all(), ::testing::IsEmpty());
}

TEST_F(SWriteCmdBinaryTest, AReadOfNoneOrTooManyIsRefused) {
    for (const unsigned char channel : {Bytes::value_type{2}, Bytes::value_type{9}, kWlan, kBluetooth})
        for (const unsigned char count : Bytes{0, 243, 244, 255})
            expectRefused(getRequest(channel, count), kReadSize,
                          "Overflow of Requesting Bytes to Read, allowed: [1,247], requested: 5");
}

TEST_F(SWriteCmdBinaryTest, AnUnknownChannelIsRefused) {
    for (const unsigned char channel : Bytes{4, 5, 239, 242, 255}) {
        expectRefused(openRequest(channel), kNoSuchChannel,
                      "Interface id " + std::to_string(channel) + " unknown");
        expectRefused(closeRequest(channel), kIoFailed, kNoHandle);
        expectRefused(sendRequest(channel, {1}), kIoFailed, kNoHandle);
        expectRefused(getRequest(channel, 1), kIoFailed, kNoHandle);
        expectRefused(getAllRequest(channel), kIoFailed, kNoHandle);
    }
}

TEST_F(SWriteCmdBinaryTest, TheStationsOwnChannelIsNotOpened) {
    for (const int own : {0, 1, 2, 3}) {
        m_frontEnd.channel = own;
        for (unsigned char channel = 0; channel < kChannels; ++channel) {
            if (channel == own)
                expectRefused(openRequest(channel), kOpenFailed, kInUse);
            else
                expectDone(openRequest(channel));
        }
        // Before anything else is looked at.
        expectRefused(openRequest(static_cast<unsigned char>(own), 0, 2), kOpenFailed, kInUse);
        for (unsigned char channel = 0; channel < kChannels; ++channel)
            expectDone(closeRequest(channel));
    }
}

TEST_F(SWriteCmdBinaryTest, WithoutAFrontEndEveryChannelMayBeOpened) {
    command().setListener(nullptr);
    EXPECT_EQ(run(openRequest(0))->code, 0u);
    EXPECT_THAT(m_lines[0].opened(), SizeIs(1));
}

TEST_F(SWriteCmdBinaryTest, TheFlagsBecomeTheLinesSettings) {
    const Rows<unsigned char, tcflag_t> rows = {
        {0x00, CS8},
        {0x01, CS8 | CSTOPB},
        {0x04, CS8 | PARENB},
        {0x06, CS8 | PARENB | PARODD},
        {0x08, CS7},
        {0x0F, CS7 | PARENB | PARODD | CSTOPB},
        {0x0D, CS7 | PARENB | CSTOPB},
        {0xF0, CS8},
        {0xFF, CS7 | PARENB | PARODD | CSTOPB},
    };
    constexpr tcflag_t kSettings = CSIZE | PARENB | PARODD | CSTOPB;
    for (const unsigned char channel : Bytes{1, 2, 3})
        for (const auto& [flags, settings] : rows) {
            SCOPED_TRACE(int{flags});
            expectDone(openRequest(channel, 9600, flags));
            EXPECT_EQ(m_calls.beforeRaw.c_cflag & kSettings, settings);
            EXPECT_EQ(::cfgetospeed(&m_calls.beforeRaw), static_cast<speed_t>(B9600));
            EXPECT_THAT(m_lines[channel].opened(), SizeIs(1));
        }
}

TEST_F(SWriteCmdBinaryTest, OneParityIsNone) {
    for (const unsigned char flags : Bytes{0x02, 0x03, 0x0A, 0xF2})
        expectRefused(openRequest(2, 9600, flags), kNoSuchParity, "Could not detect Parity");
    // Before the channel is looked for.
    expectRefused(openRequest(9, 9600, 2), kNoSuchParity, "Could not detect Parity");
    EXPECT_THAT(m_lines[2].opened(), ::testing::IsEmpty());
}

TEST_F(SWriteCmdBinaryTest, TheBaudRateComesMostSignificantByteFirst) {
    expectAnswer({9, 'S', 0, 2, 0x00, 0x01, 0xC2, 0x00, 0}, {8, 'S', 0, 2, 0, 0, 0, 0});
    EXPECT_EQ(::cfgetospeed(&m_calls.beforeRaw), static_cast<speed_t>(B115200));
    expectRefused({9, 'S', 0, 2, 0x00, 0x00, 0x01, 0x2C, 0}, kOpenFailed,
                  "Invalid Baudrate 300, errorcode: 1281");
    expectRefused({9, 'S', 0, 2, 0xFF, 0xFF, 0xFF, 0xFE, 0}, kOpenFailed,
                  "Invalid Baudrate 4294967294, errorcode: 1281");
}

TEST_F(SWriteCmdBinaryTest, BytesBehindAnOpenRequestDoNotMatter) {
    expectAnswer({11, 'S', 0, 2, 0, 0, 0x25, 0x80, 0, 9, 9}, {8, 'S', 0, 2, 0, 0, 0, 0});
    expectAnswer({6, 'S', 4, 2, 9, 9}, {8, 'S', 4, 2, 0, 0, 0, 0});
}

TEST_F(SWriteCmdBinaryTest, AChannelThatCannotBeOpenedIsToldAndStaysClosed) {
    std::filesystem::remove("/dev/ser3");
    expectRefused(openRequest(2), kOpenFailed,
                  "Failed to open Device /dev/ser3: No such file or directory, errorcode: 2");
    expectRefused(getRequest(2, 1), kIoFailed, kNotOpen);
}

TEST_F(SWriteCmdBinaryTest, AClosedChannelIsNoPipe) {
    expectRefused(sendRequest(1, {1, 2}), kIoFailed, kNotOpen);
    expectRefused(getRequest(1, 1), kIoFailed, kNotOpen);
    expectRefused(getAllRequest(1), kIoFailed, kNotOpen);
    expectDone(closeRequest(1));
}

TEST_F(SWriteCmdBinaryTest, BytesPassBothWaysAsTheyAre) {
    for (const unsigned char channel : Bytes{1, 2, 3}) {
        expectDone(openRequest(channel));
        for (const std::size_t count : {1U, 2U, 100U, 251U}) {
            std::string text(count, '\0');
            for (std::size_t at = 0; at < count; ++at)
                text[at] = static_cast<char>(at * 7 + channel);
            expectDone(sendRequest(channel, bytesOf(text)));
            EXPECT_EQ(m_lines[channel].receive(count), text);

            const std::size_t fetched = std::min<std::size_t>(count, 242);
            m_lines[channel].send(text.substr(0, fetched), static_cast<int>(fetched));
            expectDone(getRequest(channel, static_cast<unsigned char>(fetched)),
                       bytesOf(text.substr(0, fetched)));
        }
        expectDone(closeRequest(channel));
        EXPECT_THAT(m_lines[channel].opened(), ::testing::IsEmpty());
    }
}

TEST_F(SWriteCmdBinaryTest, WhatHasNotArrivedIsFetchedAsZeros) {
    expectDone(openRequest(2));
    expectDone(getRequest(2, 4), Bytes(4));
    m_lines[2].send("abc", 3);
    Bytes expected = bytesOf("abc");
    expected.resize(10);
    expectDone(getRequest(2, 10), expected);
    m_lines[2].send("abcdef", 6);
    expectDone(getRequest(2, 2), bytesOf("ab"));
    expectDone(getRequest(2, 5), {'c', 'd', 'e', 'f', 0});
}

TEST_F(SWriteCmdBinaryTest, GetAllFetchesWhatHasArrived) {
    expectDone(openRequest(2));
    expectDone(getAllRequest(2));
    m_lines[2].send("abc", 3);
    expectDone(getAllRequest(2), bytesOf("abc"));
    const std::string many = std::string(247, 'x') + std::string(53, 'y');
    m_lines[2].send(many, static_cast<int>(many.size()));
    expectDone(getAllRequest(2), Bytes(247, 'x'));
    expectDone(getAllRequest(2), Bytes(53, 'y'));
}

TEST_F(SWriteCmdBinaryTest, EveryReadWaitsForTwentyMilliseconds) {
    expectDone(openRequest(2));
    m_calls.forget();
    run(getRequest(2, 1));
    run(getAllRequest(2));
    EXPECT_THAT(m_calls.pollLimits(), ::testing::Each(20));
    EXPECT_THAT(m_calls.pollLimits(), SizeIs(2));
}

TEST_F(SWriteCmdBinaryTest, AFailingDeviceIsToldAndTheChannelStaysOpen) {
    expectDone(openRequest(2));
    for (int time = 0; time < 2; ++time)
        m_calls.failNext("write", EIO);
    expectRefused(sendRequest(2, {1}), kIoFailed,
                  "Failed to write to /dev/ser3: Input/output error, errorcode: 5");
    m_calls.failNext("poll", EIO);
    const Response failed = run(getRequest(2, 1));
    EXPECT_EQ(failed->code, kIoFailed);
    EXPECT_THAT(failed->message, ::testing::HasSubstr("/dev/ser3: Input/output error, errorcode: 5"));
    m_calls.failNext("poll", EIO);
    EXPECT_EQ(run(getAllRequest(2))->code, kIoFailed);
    m_lines[2].send("ok", 2);
    expectDone(getRequest(2, 2), bytesOf("ok"));
}

TEST_F(SWriteCmdBinaryTest, SuccessesAreResponsesOfTheProtocol) {
    expectResponse(openRequest(2));
    expectResponse(sendRequest(2, {1}));
    expectResponse(getRequest(2, 1), Bytes(1));
    expectResponse(getAllRequest(2));
    expectResponse(closeRequest(2));
}
