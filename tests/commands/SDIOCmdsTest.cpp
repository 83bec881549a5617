// The WLAN side of the wireless chip: its host commands as a stream, and its replies. It is long as each
// rule of the one stream is tried against what was collected before.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>

#include "support/TableMemory.h"
#include "support/WlanUnit.h"
#include "wire/BigEndian.h"

using ::testing::SizeIs;

namespace {

constexpr unsigned kNoMemory = 0x0A000100;
constexpr std::size_t kLargestRequest = 251;
constexpr std::uint16_t kReply = 0x8000;

constexpr char kNotOpen[] = "you need to open port first";

using Numbers = std::vector<std::uint16_t>;

const Bytes kOpen = {4, 'S', 0, kWlan};
const Bytes kClose = {4, 'S', 1, kWlan};
const Bytes kGetAll = {4, 'S', 4, kWlan};

Bytes get(unsigned char count) {
    return {5, 'S', 3, kWlan, count};
}

Bytes padded(Bytes bytes, std::size_t size) {
    bytes.resize(size);
    return bytes;
}

/// Of the bytes from the position on, at most so many.
Bytes part(const Bytes& bytes, std::size_t at, std::size_t most = SIZE_MAX) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    return {begin, begin + static_cast<std::ptrdiff_t>(std::min(most, bytes.size() - at))};
}

std::string sizeRefusal(int size) {
    return "Size of a host command must be in Range [8,255] but is " + std::to_string(size);
}

/// A case finds the link open.
class SDIOCmdsTest : public WlanUnit {
protected:
    SDIOCmdsTest() { openLink(); }

    void openLink() { expectDone(kOpen); }

    void sendPart(const Bytes& data) { expectDone(sendRequest(kWlan, data)); }

    /// A request that fails on the wire; nothing of it is sent twice.
    void expectSendRefused(const Bytes& data, unsigned code, const std::string& text) {
        expectErrorSent(m_frontEnd, sendRequest(kWlan, data), code, text);
    }

    /// A command that the chip gets as it is, and its reply, which waits to be fetched.
    void exchange(const Bytes& command, const Bytes& reply) {
        m_manager->willAnswer(0, wlanReply(reply));
        sendPart(command);
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(command));
    }

    /// That nothing is left of what was collected before.
    void expectFreshStart() {
        const Bytes reply = hostMessage(0x80A5, 0x77, 0, {3});
        exchange(hostMessage(0x00A5, 0x77, 0, {1, 2}), reply);
        expectDone(get(9), reply);
    }
};

} // namespace

TEST_F(SDIOCmdsTest, AClosedLinkIsNoPipe) {
    expectDone(kClose);
    expectRefused(sendRequest(kWlan, hostMessage(3, 1, 0)), kGenericError, kNotOpen);
    expectRefused(get(1), kGenericError, kNotOpen);
    expectRefused(kGetAll, kGenericError, kNotOpen);
    expectRefused(Words{"serial", "send", "240", "x"}, kGenericError, kNotOpen);
    expectRefused(Words{"serial", "get", "240", "4"}, kGenericError, kNotOpen);
    expectRefused(Words{"serial", "getall", "240"}, kGenericError, kNotOpen);
    expectDone(kClose);
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(SDIOCmdsTest, OpensWhenTheDriverIsThere) {
    openLink();
    expectDone({6, 'S', 0, kWlan, 1, 2});
    remove(kWlanDriver);
    expectRefused(kOpen, kGenericError, "cannot open /dev/shmem/mv8787wl for rw");
    // The link that was open before is closed, too.
    expectRefused(get(1), kGenericError, kNotOpen);
    std::filesystem::create_directory(kWlanDriver);
    openLink();
    EXPECT_EQ(m_manager->connections(), 0) << "it is only looked for";
}

TEST_F(SDIOCmdsTest, TheStationsChannelDoesNotMatter) {
    m_frontEnd.channel = kWlan;
    openLink();
}

TEST_F(SDIOCmdsTest, WithoutAReplyZerosAreFetched) {
    expectDone(get(5), Bytes(5));
    expectDone(get(242), Bytes(242));
    expectDone(kGetAll, Bytes(247));
    expectAnswer(Words{"serial", "get", "240", "3"}, "serial get 0xF0 base64(AAAA)");
    expectAnswer(Words{"serial", "getall", "240"},
                 "serial getall 0xF0 " + command().ascii_buildBase64String(Bytes(247)));
}

TEST_F(SDIOCmdsTest, ACommandReachesTheChipAndItsReplyIsFetchedOnce) {
    const Bytes reply = hostMessage(0x8003, 0x1234, 0, {1, 2, 3, 4, 5});
    exchange(hostMessage(0x0003, 0x1234, 0, {0xAA, 0xBB, 0xCC}), reply);
    EXPECT_THAT(m_manager->requests(), SizeIs(1));
    expectDone(kGetAll, padded(reply, 247));
    expectDone(kGetAll, Bytes(247));
}

TEST_F(SDIOCmdsTest, APartOfAReplyIsAllThatIsFetchedOfIt) {
    const Bytes reply = hostMessage(0x8003, 1, 0, {1, 2, 3, 4});
    for (const unsigned char count : Bytes{1, 8, 11, 12, 13, 242}) {
        exchange(hostMessage(3, 1, 0), reply);
        expectDone(get(count), padded(reply, count));
        expectDone(get(count), Bytes(count));
    }
}

TEST_F(SDIOCmdsTest, ALineSendsItsBytes) {
    expectAnswer(Words{"serial", "open", "240"}, "serial ok");
    const Bytes command = hostMessage(0x0003, 7, 0, Bytes(247, 0xC3));
    const Bytes reply = hostMessage(0x8003, 7, 0, {0xFE});
    m_manager->willAnswer(0, wlanReply(reply));
    expectAnswer(lineWithData({"serial", "send", "240"}, command), "serial ok");
    EXPECT_EQ(m_manager->lastRequest(), wlanRequest(command));
    expectAnswer(Words{"serial", "get", "240", "9"},
                 "serial get 0xF0 " + PassThroughUnit::command().ascii_buildBase64String(reply));
    expectAnswer(lineWithData({"serial", "send", "240"}, {}), "serial ok");
    expectAnswer(Words{"serial", "close", "240"}, "serial ok");
}

TEST_F(SDIOCmdsTest, EachSizeOfACommandIsSentWhole) {
    for (const std::size_t size : {8U, 9U, 100U, 247U, 251U, 254U, 255U}) {
        SCOPED_TRACE(size);
        const Bytes command = hostMessage(9, 1, 0, counting(size - 8));
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8009, 1, 0)));
        const std::size_t cut = std::min(size, kLargestRequest);
        sendPart(part(command, 0, cut));
        if (cut < size)
            sendPart(part(command, cut));
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(command));
    }
}

TEST_F(SDIOCmdsTest, AnIncompleteCommandWaitsForItsRest) {
    const Bytes command = hostMessage(0x0010, 2, 0, {1, 2});
    for (std::size_t cut = 1; cut < command.size(); ++cut) {
        SCOPED_TRACE(cut);
        sendPart(part(command, 0, cut));
        EXPECT_THAT(m_manager->requests(), SizeIs(cut - 1));
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8010, 2, 0)));
        sendPart(part(command, cut));
        EXPECT_THAT(m_manager->requests(), SizeIs(cut));
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(command));
    }
    for (const unsigned char& byte : command) {
        if (&byte == &command.back())
            m_manager->willAnswer(0, wlanReply(hostMessage(0x8010, 2, 0)));
        sendPart({byte});
    }
    EXPECT_EQ(m_manager->lastRequest(), wlanRequest(command));
}

TEST_F(SDIOCmdsTest, ClosingAndOpeningForgetWhatIsIncomplete) {
    const Bytes command = hostMessage(0x0010, 2, 0, {1, 2});
    for (const std::size_t cut : {1U, 4U, 9U}) {
        sendPart(part(command, 0, cut));
        expectDone(kClose);
        openLink();
        expectFreshStart();
        sendPart(part(command, 0, cut));
        openLink();
        expectFreshStart();
    }
}

TEST_F(SDIOCmdsTest, AReplyOutlivesTheClosingOfTheLink) {
    const Bytes reply = hostMessage(0x8003, 1, 0, {9});
    exchange(hostMessage(3, 1, 0), reply);
    expectDone(kClose);
    openLink();
    expectDone(get(9), reply);
}

TEST_F(SDIOCmdsTest, TheLastReplyIsTheOneThatIsFetched) {
    const Bytes commands =
        joined({hostMessage(1, 1, 0, {1}), hostMessage(2, 2, 0, {2, 2}), hostMessage(3, 3, 0)});
    const Bytes last = hostMessage(0x8003, 3, 0, {3});
    m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, 1, 0, Bytes(100, 1))));
    m_manager->willAnswer(0, wlanReply(hostMessage(0x8002, 2, 0, {2})));
    m_manager->willAnswer(0, wlanReply(last));
    sendPart(commands);
    EXPECT_THAT(m_manager->requests(), ::testing::ElementsAre(wlanRequest(hostMessage(1, 1, 0, {1})),
                                                              wlanRequest(hostMessage(2, 2, 0, {2, 2})),
                                                              wlanRequest(hostMessage(3, 3, 0))));
    expectDone(kGetAll, padded(last, 247));
}

TEST_F(SDIOCmdsTest, ASizeThatCannotBeIsRefusedAndEmptiesTheCollection) {
    for (const std::uint16_t size : Numbers{0, 1, 4, 7, 256, 257, 0x0800, 0xFFFF}) {
        SCOPED_TRACE(size);
        const Bytes command = hostMessage(1, size, 1, 0, Bytes(50, 1));
        expectRefused(sendRequest(kWlan, command), kGenericError, sizeRefusal(size));
        expectFreshStart();
        // The same once its size comes in a request of its own.
        sendPart({1, 0, static_cast<unsigned char>(size)});
        const Bytes rest = {static_cast<unsigned char>(size >> 8), 1, 0, 0, 0};
        expectSendRefused(rest, kGenericError, sizeRefusal(size));
        expectFreshStart();
    }
}

TEST_F(SDIOCmdsTest, CommandsBeforeAWrongSizeAreSentAndThoseBehindItAreNot) {
    const Bytes first = hostMessage(1, 1, 0, {1});
    const Bytes reply = hostMessage(0x8001, 1, 0);
    m_manager->willAnswer(0, wlanReply(reply));
    expectSendRefused(joined({first, hostMessage(2, 7, 1, 0, {}), hostMessage(3, 1, 0)}), kGenericError,
                      sizeRefusal(7));
    EXPECT_THAT(m_manager->requests(), ::testing::ElementsAre(wlanRequest(first)));
    expectDone(get(8), reply);
    expectFreshStart();
}

TEST_F(SDIOCmdsTest, ARefusalByTheChipIsToldAndEndsTheRequest) {
    for (const std::uint16_t result : Numbers{1, 2, 0x00FF, 0xFFFF}) {
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, 1, result, {1})));
        expectSendRefused(joined({hostMessage(1, 1, 0), hostMessage(2, 2, 0), {9, 9}}), kGenericError,
                          "cmd.result was " + std::to_string(result));
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(hostMessage(1, 1, 0)));
        expectDone(get(4), Bytes(4));
        expectFreshStart();
    }
}

TEST_F(SDIOCmdsTest, AReplyBeyondTheStoreIsRefusedAsAWhole) {
    const Bytes kept = hostMessage(0x8001, 1, 0, {7});
    exchange(hostMessage(1, 1, 0), kept);
    for (const std::uint16_t size : Numbers{248, 250, 255}) {
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, size, 1, 0, Bytes(247, 1))));
        expectSendRefused(
            hostMessage(1, 1, 0), kGenericError,
            "Response of " + std::to_string(size) + " bytes is longer than the allowed 247 bytes");
    }
    expectDone(get(9), kept);
    expectFreshStart();
}

TEST_F(SDIOCmdsTest, TheLongestReplyIsStored) {
    const Bytes reply = hostMessage(0x8001, 1, 0, counting(239));
    exchange(hostMessage(1, 1, 0), reply);
    expectDone(kGetAll, reply);
}

TEST_F(SDIOCmdsTest, ALongReplyLeavesNothingBehindAShortOne) {
    exchange(hostMessage(1, 1, 0), hostMessage(0x8001, 1, 0, Bytes(239, 0xEE)));
    const Bytes reply = hostMessage(0x8001, 1, 0, {1});
    exchange(hostMessage(1, 1, 0), reply);
    expectDone(kGetAll, padded(reply, 247));
}

TEST_F(SDIOCmdsTest, AReplyOfNoBytesIsNone) {
    exchange(hostMessage(1, 1, 0), hostMessage(0x8001, 0, 1, 0, {}));
    expectDone(get(4), Bytes(4));
}

TEST_F(SDIOCmdsTest, WhatTheDriverFailsWithIsTold) {
    ::testing::internal::CaptureStderr();
    for (const int error : {1, 5, 22, 48, 110}) {
        m_manager->willAnswer(error);
        expectSendRefused(hostMessage(1, 1, 0), kGenericError,
                          std::string("error from uap_ioctl(): ") + std::strerror(error));
        expectFreshStart();
    }
    m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, 256, 1, 0, {})));
    expectSendRefused(hostMessage(1, 1, 0), kGenericError, "error from uap_ioctl(): Success");
    ::testing::internal::GetCapturedStderr();
    expectFreshStart();
}

TEST_F(SDIOCmdsTest, AManagerThatGoesIsToldAndMayComeBack) {
    ::testing::internal::CaptureStderr();
    m_manager->willVanish();
    expectSendRefused(hostMessage(1, 1, 0), kGenericError, "error from uap_ioctl(): Broken pipe");
    expectSendRefused(hostMessage(1, 1, 0), kGenericError, "error from uap_ioctl(): No such device");
    ::testing::internal::GetCapturedStderr();
    m_manager = std::make_unique<ScriptedManager>(kWlanManager);
    expectFreshStart();
}

TEST_F(SDIOCmdsTest, WithoutMemoryNothingIsCollectedOrStored) {
    inFreshProcess([this] {
        command().sdioOpen();
        refuseTableMemory(true);
        const Bytes message = hostMessage(1, 1, 0);
        expectError(command().sdioSend(message.data(), 8), kNoMemory, "failed to alloc255 bytes");
        refuseTableMemory(false);
        EXPECT_EQ(command().sdioSend(message.data(), 2)->code, 0u);
        refuseTableMemory(true);
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, 1, 0)));
        expectError(command().sdioSend(message.data() + 2, 6), kNoMemory, "couldn't alloc 247");
        refuseTableMemory(false);
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(hostMessage(1, 1, 0)));
        m_manager.reset();
    });
}

TEST_F(SDIOCmdsTest, AStreamCutAnywhereIsSentCommandByCommand) {
    std::mt19937 random(20240229);
    const auto upTo = [&](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };
    std::vector<Bytes> expected;
    Bytes stream;
    Bytes reply;
    for (std::uint16_t number = 1; number <= 300; ++number) {
        const std::size_t most = number % 7 == 0 ? 247 : 20;
        const Bytes command = hostMessage(number, number, 0, counting(upTo(most)));
        reply = hostMessage(static_cast<std::uint16_t>(number | kReply), number, 0, counting(upTo(239)));
        m_manager->willAnswer(0, wlanReply(reply));
        expected.push_back(wlanRequest(command));
        stream = joined({stream, command});
    }
    for (std::size_t at = 0; at < stream.size();) {
        const std::size_t count = std::min(1 + upTo(kLargestRequest - 1), stream.size() - at);
        sendPart(part(stream, at, count));
        at += count;
    }
    EXPECT_TRUE(m_manager->requests() == expected);
    expectDone(kGetAll, padded(reply, 247));
}
