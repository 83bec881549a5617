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

std::string sizeRefusal(int size) {
    return "Size of a host command must be in Range [8,255] but is " + std::to_string(size);
}

class SDIOCmdsTest : public WlanUnit {
protected:
    void openLink() { expectAnswer(kOpen, success(kOpen)); }

    void sendPart(const Bytes& data) {
        const Bytes request = sendRequest(kWlan, data);
        expectAnswer(request, success(request));
    }

    /// A request that fails on the wire; nothing of it is sent twice.
    void expectSendRefused(const Bytes& data, unsigned code, const std::string& text) {
        expectErrorSent(m_frontEnd, sendRequest(kWlan, data), code, text);
    }

    /// That nothing is left of what was collected before.
    void expectFreshStart() {
        const Bytes command = hostMessage(0x00A5, 0x77, 0, {1, 2});
        const Bytes reply = hostMessage(0x80A5, 0x77, 0, {3});
        m_manager->willAnswer(0, wlanReply(reply));
        sendPart(command);
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(command));
        expectAnswer(get(9), success(get(9), reply));
    }
};

} // namespace

TEST_F(SDIOCmdsTest, AClosedLinkIsNoPipe) {
    expectRefused(sendRequest(kWlan, hostMessage(3, 1, 0)), kGenericError, kNotOpen);
    expectRefused(get(1), kGenericError, kNotOpen);
    expectRefused(kGetAll, kGenericError, kNotOpen);
    expectLineRefused(tokens({"serial", "send", "240", "x"}), kGenericError, kNotOpen);
    expectLineRefused(tokens({"serial", "get", "240", "4"}), kGenericError, kNotOpen);
    expectLineRefused(tokens({"serial", "getall", "240"}), kGenericError, kNotOpen);
    expectAnswer(kClose, success(kClose));
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(SDIOCmdsTest, OpensWhenTheDriverIsThere) {
    openLink();
    openLink();
    expectAnswer({6, 'S', 0, kWlan, 1, 2}, success(kOpen));
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
    openLink();
    expectAnswer(get(5), success(get(5), Bytes(5)));
    expectAnswer(get(242), success(get(242), Bytes(242)));
    expectAnswer(kGetAll, success(kGetAll, Bytes(247)));
    expectLine(tokens({"serial", "get", "240", "3"}), "serial get 0xF0 base64(AAAA)");
    expectLine(tokens({"serial", "getall", "240"}),
               "serial getall 0xF0 " + command().ascii_buildBase64String(Bytes(247)));
}

TEST_F(SDIOCmdsTest, ACommandReachesTheChipAndItsReplyIsFetchedOnce) {
    openLink();
    const Bytes command = hostMessage(0x0003, 0x1234, 0, {0xAA, 0xBB, 0xCC});
    const Bytes reply = hostMessage(0x8003, 0x1234, 0, {1, 2, 3, 4, 5});
    m_manager->willAnswer(0, wlanReply(reply));
    sendPart(command);
    EXPECT_THAT(m_manager->requests(), ::testing::ElementsAre(wlanRequest(command)));
    expectAnswer(kGetAll, success(kGetAll, padded(reply, 247)));
    expectAnswer(kGetAll, success(kGetAll, Bytes(247)));
}

TEST_F(SDIOCmdsTest, APartOfAReplyIsAllThatIsFetchedOfIt) {
    openLink();
    const Bytes reply = hostMessage(0x8003, 1, 0, {1, 2, 3, 4});
    for (const unsigned char count : Bytes{1, 8, 11, 12, 13, 242}) {
        m_manager->willAnswer(0, wlanReply(reply));
        sendPart(hostMessage(3, 1, 0));
        expectAnswer(get(count), success(get(count), padded(reply, count)));
        expectAnswer(get(count), success(get(count), Bytes(count)));
    }
}

TEST_F(SDIOCmdsTest, ALineSendsItsBytes) {
    expectLine(tokens({"serial", "open", "240"}), "serial ok");
    const Bytes command = hostMessage(0x0003, 7, 0, Bytes(247, 0xC3));
    const Bytes reply = hostMessage(0x8003, 7, 0, {0xFE});
    m_manager->willAnswer(0, wlanReply(reply));
    expectLine(lineWithData({"serial", "send", "240"}, command), "serial ok");
    EXPECT_EQ(m_manager->lastRequest(), wlanRequest(command));
    expectLine(tokens({"serial", "get", "240", "9"}),
               "serial get 0xF0 " + PassThroughUnit::command().ascii_buildBase64String(reply));
    expectLine(lineWithData({"serial", "send", "240"}, {}), "serial ok");
    expectLine(tokens({"serial", "close", "240"}), "serial ok");
}

TEST_F(SDIOCmdsTest, EachSizeOfACommandIsSentWhole) {
    openLink();
    for (const std::size_t size : {8U, 9U, 100U, 247U, 251U, 254U, 255U}) {
        SCOPED_TRACE(size);
        const Bytes command = hostMessage(9, 1, 0, counting(size - 8));
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8009, 1, 0)));
        if (command.size() <= kLargestRequest) {
            sendPart(command);
        } else {
            sendPart(Bytes(command.begin(), command.begin() + kLargestRequest));
            sendPart(Bytes(command.begin() + kLargestRequest, command.end()));
        }
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(command));
    }
}

TEST_F(SDIOCmdsTest, AnIncompleteCommandWaitsForItsRest) {
    openLink();
    const Bytes command = hostMessage(0x0010, 2, 0, {1, 2});
    for (std::size_t cut = 1; cut < command.size(); ++cut) {
        SCOPED_TRACE(cut);
        const std::size_t before = m_manager->requests().size();
        sendPart(Bytes(command.begin(), command.begin() + static_cast<std::ptrdiff_t>(cut)));
        EXPECT_THAT(m_manager->requests(), SizeIs(before));
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8010, 2, 0)));
        sendPart(Bytes(command.begin() + static_cast<std::ptrdiff_t>(cut), command.end()));
        EXPECT_THAT(m_manager->requests(), SizeIs(before + 1));
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
    openLink();
    const Bytes command = hostMessage(0x0010, 2, 0, {1, 2});
    for (const std::size_t cut : {1U, 4U, 9U}) {
        sendPart(Bytes(command.begin(), command.begin() + static_cast<std::ptrdiff_t>(cut)));
        expectAnswer(kClose, success(kClose));
        openLink();
        expectFreshStart();
        sendPart(Bytes(command.begin(), command.begin() + static_cast<std::ptrdiff_t>(cut)));
        openLink();
        expectFreshStart();
    }
}

TEST_F(SDIOCmdsTest, AReplyOutlivesTheClosingOfTheLink) {
    openLink();
    const Bytes reply = hostMessage(0x8003, 1, 0, {9});
    m_manager->willAnswer(0, wlanReply(reply));
    sendPart(hostMessage(3, 1, 0));
    expectAnswer(kClose, success(kClose));
    openLink();
    expectAnswer(get(9), success(get(9), reply));
}

TEST_F(SDIOCmdsTest, TheLastReplyIsTheOneThatIsFetched) {
    openLink();
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
    expectAnswer(kGetAll, success(kGetAll, padded(last, 247)));
}

TEST_F(SDIOCmdsTest, ASizeThatCannotBeIsRefusedAndEmptiesTheCollection) {
    openLink();
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
    openLink();
    const Bytes first = hostMessage(1, 1, 0, {1});
    const Bytes reply = hostMessage(0x8001, 1, 0);
    m_manager->willAnswer(0, wlanReply(reply));
    expectSendRefused(joined({first, hostMessage(2, 7, 1, 0, {}), hostMessage(3, 1, 0)}), kGenericError,
                      sizeRefusal(7));
    EXPECT_THAT(m_manager->requests(), ::testing::ElementsAre(wlanRequest(first)));
    expectAnswer(get(8), success(get(8), reply));
    expectFreshStart();
}

TEST_F(SDIOCmdsTest, ARefusalByTheChipIsToldAndEndsTheRequest) {
    openLink();
    for (const std::uint16_t result : Numbers{1, 2, 0x00FF, 0xFFFF}) {
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, 1, result, {1})));
        expectSendRefused(joined({hostMessage(1, 1, 0), hostMessage(2, 2, 0), {9, 9}}), kGenericError,
                          "cmd.result was " + std::to_string(result));
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(hostMessage(1, 1, 0)));
        expectAnswer(get(4), success(get(4), Bytes(4)));
        expectFreshStart();
    }
}

TEST_F(SDIOCmdsTest, AReplyBeyondTheStoreIsRefusedAsAWhole) {
    openLink();
    const Bytes kept = hostMessage(0x8001, 1, 0, {7});
    m_manager->willAnswer(0, wlanReply(kept));
    sendPart(hostMessage(1, 1, 0));
    for (const std::uint16_t size : Numbers{248, 250, 255}) {
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, size, 1, 0, Bytes(247, 1))));
        expectSendRefused(
            hostMessage(1, 1, 0), kGenericError,
            "Response of " + std::to_string(size) + " bytes is longer than the allowed 247 bytes");
    }
    expectAnswer(get(9), success(get(9), kept));
    expectFreshStart();
}

TEST_F(SDIOCmdsTest, TheLongestReplyIsStored) {
    openLink();
    const Bytes reply = hostMessage(0x8001, 1, 0, counting(239));
    m_manager->willAnswer(0, wlanReply(reply));
    sendPart(hostMessage(1, 1, 0));
    expectAnswer(kGetAll, success(kGetAll, reply));
}

TEST_F(SDIOCmdsTest, ALongReplyLeavesNothingBehindAShortOne) {
    openLink();
    m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, 1, 0, Bytes(239, 0xEE))));
    sendPart(hostMessage(1, 1, 0));
    const Bytes reply = hostMessage(0x8001, 1, 0, {1});
    m_manager->willAnswer(0, wlanReply(reply));
    sendPart(hostMessage(1, 1, 0));
    expectAnswer(kGetAll, success(kGetAll, padded(reply, 247)));
}

TEST_F(SDIOCmdsTest, AReplyOfNoBytesIsNone) {
    openLink();
    m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, 0, 1, 0, {})));
    sendPart(hostMessage(1, 1, 0));
    expectAnswer(get(4), success(get(4), Bytes(4)));
}

TEST_F(SDIOCmdsTest, WhatTheDriverFailsWithIsTold) {
    openLink();
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
    openLink();
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
        Response response(command().sdioSend(hostMessage(1, 1, 0).data(), 8));
        EXPECT_EQ(response->code, kNoMemory);
        EXPECT_EQ(response->message, "failed to alloc255 bytes");
        refuseTableMemory(false);
        const Bytes half = {1, 0};
        response = command().sdioSend(half.data(), half.size());
        EXPECT_EQ(response->code, 0u);
        refuseTableMemory(true);
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8001, 1, 0)));
        const Bytes rest = {8, 0, 1, 0, 0, 0};
        response = command().sdioSend(rest.data(), rest.size());
        EXPECT_EQ(response->code, kNoMemory);
        EXPECT_EQ(response->message, "couldn't alloc 247");
        refuseTableMemory(false);
        EXPECT_EQ(m_manager->lastRequest(), wlanRequest(hostMessage(1, 1, 0)));
        m_manager.reset();
    });
}

TEST_F(SDIOCmdsTest, AStreamCutAnywhereIsSentCommandByCommand) {
    openLink();
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
        const auto begin = stream.begin() + static_cast<std::ptrdiff_t>(at);
        sendPart(Bytes(begin, begin + static_cast<std::ptrdiff_t>(count)));
        at += count;
    }
    EXPECT_TRUE(m_manager->requests() == expected);
    expectAnswer(kGetAll, success(kGetAll, padded(reply, 247)));
}
