// The Bluetooth side of the wireless chip as the pass-through command's channel 241.
#include "driver/ScriptedBluetooth.h"
#include "support/PassThroughUnit.h"
#include "support/Waiting.h"

namespace {

const Bytes kOpen = {4, 'S', 0, kBluetooth};
const Bytes kClose = {4, 'S', 1, kBluetooth};
const Bytes kGetAll = {4, 'S', 4, kBluetooth};

Bytes get(unsigned char count) {
    return {5, 'S', 3, kBluetooth, count};
}

class SWriteCmdBluetoothTest : public PassThroughUnit {
protected:
    ~SWriteCmdBluetoothTest() override {
        // Before the driver goes.
        command().close(kBluetooth);
    }

    void openLink() { expectDone(kOpen); }

    /// What the request fetches once something has come.
    Bytes fetched(const Bytes& request) {
        Bytes answer;
        EXPECT_TRUE(eventually([&] {
            answer = m_frontEnd.send(request);
            return answer.size() > answerTo(request).size();
        }));
        return answer;
    }
    std::string fetchedLine(const Tokens& line) {
        std::string answer;
        EXPECT_TRUE(eventually([&] {
            answer = m_frontEnd.send(line);
            return answer.find("base64(") != std::string::npos &&
                   answer.find("base64()") == std::string::npos;
        }));
        return answer;
    }

    ScriptedBluetooth m_driver;
};

} // namespace

TEST_F(SWriteCmdBluetoothTest, PacketsPassBothWays) {
    openLink();
    EXPECT_EQ(m_driver.lastOpening().path, "/dev/sdio0");
    ASSERT_TRUE(m_driver.waitUntilInside(ScriptedBluetooth::InRead));
    expectDone(sendRequest(kBluetooth, {0x01, 0x03, 0x0C, 0x00}));
    EXPECT_TRUE(
        (m_driver.writes() == std::vector<ScriptedBluetooth::Write>{{1, 0x01, {0x03, 0x0C, 0x00}}}));
    m_driver.receive(0x04, {0x0E, 0x04, 0x01, 0x03, 0x0C, 0x00});
    EXPECT_EQ(fetched(get(3)), answerTo(get(3), {0x04, 0x0E, 0x04}));
    expectDone(kGetAll, {0x01, 0x03, 0x0C, 0x00});
    expectDone(kClose);
    EXPECT_TRUE(m_driver.waitUntilUnloaded());
}

TEST_F(SWriteCmdBluetoothTest, LinesPassBothWays) {
    expectAnswer(Words{"serial", "open", "241"}, "serial ok");
    ASSERT_TRUE(m_driver.waitUntilInside(ScriptedBluetooth::InRead));
    expectAnswer(lineWithData({"serial", "send", "241"}, {0x01, 0x03, 0x0C, 0x00}), "serial ok");
    expectAnswer(lineWithData({"serial", "send", "241"}, {0x02}), "serial ok");
    EXPECT_TRUE((m_driver.writes() ==
                 std::vector<ScriptedBluetooth::Write>{{1, 0x01, {0x03, 0x0C, 0x00}}, {1, 0x02, {}}}));
    m_driver.receive(0x04, {0x0E, 0x04});
    EXPECT_EQ(fetchedLine(tokens({"serial", "get", "241", "2"})), "serial get 0xF1 base64(BA4=)");
    expectAnswer(Words{"serial", "getall", "241"}, "serial getall 0xF1 base64(BA==)");
    expectAnswer(Words{"serial", "get", "241", "2"}, "serial get 0xF1 base64()");
    expectRefused(Words{"serial", "getall", "241"}, kIoFailed, "");
    expectRefused(lineWithData({"serial", "send", "241"}, {}), kGenericError, "Expected Data to send");
    expectAnswer(Words{"serial", "close", "241"}, "serial ok");
}

TEST_F(SWriteCmdBluetoothTest, WithNothingToFetchGetSucceedsAndGetAllFails) {
    openLink();
    expectDone(get(5));
    expectRefused(kGetAll, kIoFailed, "");
}

TEST_F(SWriteCmdBluetoothTest, AClosedLinkAnswersZeros) {
    expectDone(get(5), Bytes(5));
    expectDone(kGetAll, Bytes(247));
    expectDone(sendRequest(kBluetooth, {1, 2}));
    expectDone(kClose);
    EXPECT_EQ(m_driver.loads(), 0);
}

TEST_F(SWriteCmdBluetoothTest, ALongPacketIsFetchedInParts) {
    openLink();
    m_driver.receive(0x02, Bytes(599, 0x02));
    EXPECT_EQ(fetched(get(242)), answerTo(get(242), Bytes(242, 0x02)));
    expectDone(get(242), Bytes(242, 0x02));
    expectDone(get(242), Bytes(116, 0x02));
    // A line has room for all of it at once.
    m_driver.receive(0x02, Bytes(599, 0x02));
    EXPECT_EQ(fetchedLine(tokens({"serial", "getall", "241"})),
              "serial getall 0xF1 " + command().ascii_buildBase64String(Bytes(600, 0x02)));
}

TEST_F(SWriteCmdBluetoothTest, ADriverThatCannotBeHadIsToldByItsCode) {
    m_driver.refuseToOpen(true);
    ::testing::internal::CaptureStderr();
    expectRefused(kOpen, kOpenFailed, "");
    expectRefused(Words{"serial", "open", "241"}, kOpenFailed, "");
    ::testing::internal::GetCapturedStderr();
    m_driver.refuseToOpen(false);
    openLink();
}
