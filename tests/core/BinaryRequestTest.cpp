// What AbstractCmd makes of a binary request before a command runs.
#include <gmock/gmock.h>

#include <memory>

#include "core/AbstractCmd.h"
#include "support/Rows.h"
#include "support/ScriptedCommand.h"

using ::testing::ElementsAreArray;

namespace {

class BinaryRequestTest : public ::testing::Test {
protected:
    static ScriptedCommand& command() { return ScriptedCommand::diag(); }

    BinaryRequestTest() {
        command().reset();
        command().onRequest = [this](Bytes* request) {
            m_processed.push_back(*request);
            return new ProcessResponse(ProcessResponse::kSuccess);
        };
    }

    std::unique_ptr<ProcessResponse> check(Bytes* request) {
        return std::unique_ptr<ProcessResponse>(command().tavrin_preCheck(request));
    }

    std::vector<Bytes> m_processed;
};

Bytes frameOf(std::size_t size, unsigned char id) {
    Bytes frame(size, 0);
    frame[0] = static_cast<unsigned char>(size);
    frame[1] = id;
    return frame;
}

} // namespace

TEST_F(BinaryRequestTest, TellsTheCommandsId) {
    EXPECT_EQ(command().tavrin_getName(), 'D');
    EXPECT_EQ(ScriptedCommand::make(0, "").tavrin_getName(), 0);
}

TEST_F(BinaryRequestTest, ReadsLengthAndSubCommand) {
    const Rows<Bytes, int, int> rows = {
        {{}, -1, -1},
        {{0x00}, 0, -1},
        {{0x02, 'D'}, 2, -1},
        {{0x03, 'D', 0x09}, 3, 0x09},
        {{0x03, 'D', 0x00}, 3, 0x00},
        {{0xFF, 'D', 0xFF}, 255, 0xFF},
        {{0x80, 'D', 0x80, 0x01}, 128, 0x80},
    };
    for (const auto& [request, length, subCommand] : rows) {
        SCOPED_TRACE(::testing::PrintToString(request));
        EXPECT_EQ(command().tavrin_getRequestLen(&request), length);
        EXPECT_EQ(command().tavrin_getCommand(&request), subCommand);
    }
    EXPECT_EQ(command().tavrin_getRequestLen(nullptr), 0);
    EXPECT_EQ(command().tavrin_getCommand(nullptr), -1);
}

TEST_F(BinaryRequestTest, AnInvalidFrameNeverReachesTheCommand) {
    const std::string wrongSize = "Internal Error: Invalid Request Buffer Size";
    const std::string wrongLength = "Command Length must be in Range [2, 255], but is ";
    const std::string wrongName = "Get a Process-Request with invalid Command-Name: ";
    const Rows<const char*, Bytes, std::string, Bytes> rows = {
        {"empty", {}, "Command is empty", {8, 0, 0, 0, 1, 1, 0, 0}},
        {"one byte more than D0", {0x03, 'D', 0x09, 0x01}, wrongSize, {8, 'D', 9, 1, 1, 1, 0, 0}},
        {"one byte less than D0", {0x03, 'D'}, wrongSize, {8, 'D', 0, 0, 1, 1, 0, 0}},
        {"D0 is 0", {0x00}, wrongSize, {8, 0, 0, 0, 1, 1, 0, 0}},
        {"wrong length and wrong name", {0x05, 'E', 0x09}, wrongSize, {8, 'E', 9, 0, 1, 1, 0, 0}},
        {"D0 alone", {0x01}, wrongLength + "1", {8, 0, 0, 0, 1, 1, 0, 0}},
        {"another command", {0x02, 'E'}, wrongName + "E", {8, 'E', 0, 0, 1, 1, 0, 0}},
        {"another case", {0x03, 'd', 0x07}, wrongName + "d", {8, 'd', 7, 0, 1, 1, 0, 0}},
        {"an id above 0x7F", {0x02, 0xC4}, wrongName + "\xC4", {8, 0xC4, 0, 0, 1, 1, 0, 0}},
        {"a per-cent sign", {0x04, '%', 1, 2}, wrongName + "%", {8, '%', 1, 2, 1, 1, 0, 0}},
        {"an id of zero", {0x02, 0}, wrongName + std::string(1, '\0'), {8, 0, 0, 0, 1, 1, 0, 0}},
    };
    for (const auto& [what, sent, text, frame] : rows) {
        SCOPED_TRACE(what);
        Bytes request = sent;
        const auto response = check(&request);
        EXPECT_EQ(response->code, 0x01010000u);
        EXPECT_EQ(response->message, text);
        ASSERT_EQ(response->protocol, 't');
        EXPECT_THAT(static_cast<ProcessResponseTavrin&>(*response).data, ElementsAreArray(frame));
        EXPECT_EQ(request, sent);
    }
    EXPECT_TRUE(m_processed.empty());
}

TEST_F(BinaryRequestTest, NoRequestAtAllIsAnEmptyOne) {
    const auto response = check(nullptr);
    EXPECT_EQ(response->code, 0x01010000u);
    EXPECT_EQ(response->message, "Command is empty");
    EXPECT_THAT(static_cast<ProcessResponseTavrin&>(*response).data,
                ElementsAreArray({8, 0, 0, 0, 1, 1, 0, 0}));
}

TEST_F(BinaryRequestTest, AFrameOf256BytesDoesNotPass) {
    Bytes request(256, 0); // its length does not fit into D0
    request[1] = 'D';
    EXPECT_EQ(check(&request)->message, "Internal Error: Invalid Request Buffer Size");
    EXPECT_TRUE(m_processed.empty());
}

TEST_F(BinaryRequestTest, AValidFrameReachesTheCommandAsItIs) {
    for (const std::size_t size : {2u, 3u, 4u, 254u, 255u}) {
        SCOPED_TRACE(size);
        Bytes request = frameOf(size, 'D');
        m_processed.clear();
        EXPECT_EQ(check(&request)->code, 0u);
        EXPECT_THAT(m_processed, ::testing::ElementsAre(request));
    }
}

TEST_F(BinaryRequestTest, TheGenericErrorEchoesWhatTheRequestHas) {
    const Rows<const char*, Bytes, Bytes> rows = {
        {"nothing", {}, {8, 0, 0, 0, 1, 1, 0, 0}},
        {"D0", {9}, {8, 0, 0, 0, 1, 1, 0, 0}},
        {"D1", {9, 0xA1}, {8, 0xA1, 0, 0, 1, 1, 0, 0}},
        {"D2", {9, 0xA1, 0xA2}, {8, 0xA1, 0xA2, 0, 1, 1, 0, 0}},
        {"D3", {9, 0xA1, 0xA2, 0xA3}, {8, 0xA1, 0xA2, 0xA3, 1, 1, 0, 0}},
        {"more", {9, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5}, {8, 0xA1, 0xA2, 0xA3, 1, 1, 0, 0}},
    };
    for (const auto& [what, request, frame] : rows) {
        SCOPED_TRACE(what);
        const std::string text = "100% %s";
        const std::unique_ptr<ProcessResponseTavrin> fromString(
            command().tavrin_generateGenericError(&request, text));
        const std::unique_ptr<ProcessResponseTavrin> fromPointer(
            command().tavrin_generateGenericError(&request, text.c_str()));
        for (const auto* response : {fromString.get(), fromPointer.get()}) {
            EXPECT_EQ(response->code, 0x01010000u);
            EXPECT_EQ(response->message, "100% %s");
            EXPECT_EQ(response->protocol, 't');
            EXPECT_THAT(response->data, ElementsAreArray(frame));
        }
    }
    const std::unique_ptr<ProcessResponseTavrin> forNone(
        command().tavrin_generateGenericError(nullptr, "text"));
    EXPECT_THAT(forNone->data, ElementsAreArray({8, 0, 0, 0, 1, 1, 0, 0}));
}
