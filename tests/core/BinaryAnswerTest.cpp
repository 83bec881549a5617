// What AbstractCmd makes of a response in the binary protocol.
#include <memory>
#include <numeric>
#include <stdexcept>

#include "core/AbstractCmd.h"
#include "core/ProcessResponseAscii.h"
#include "support/AnswerFixture.h"
#include "support/Rows.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::ThrowsMessage;

namespace {

const Bytes kRequest = {0x04, 'D', 0xA2, 0xA3};
const std::string kTooShort = "request size < 4";

Bytes countedBytes(std::size_t size) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(1));
    return bytes;
}

class BinaryAnswerTest : public AnswerFixture {
protected:
    ~BinaryAnswerTest() override { EXPECT_THAT(m_listener.lines, IsEmpty()); }

    Bytes exec(ProcessResponse* response) {
        Bytes request = kRequest;
        return command().tavrin_exec(&request, response);
    }
};

} // namespace

TEST_F(BinaryAnswerTest, SuccessWithoutDataIsEightBytes) {
    const Bytes expected = {0x08, 'D', 0xA2, 0xA3, 0, 0, 0, 0};
    EXPECT_EQ(exec(new ProcessResponse(0)), expected);
    EXPECT_EQ(exec(new ProcessResponse(0, "not sent")), expected);
    EXPECT_EQ(exec(new ProcessResponseTavrin(0, "")), expected);
    EXPECT_EQ(exec(new ProcessResponseAscii(0, "not sent")), expected);
    EXPECT_THAT(m_listener.frames, IsEmpty());
}

TEST_F(BinaryAnswerTest, SuccessWithAFilledFrameIsThatFrame) {
    auto* response = new ProcessResponseTavrin(0, "");
    response->data = {1, 2, 3};
    EXPECT_THAT(exec(response), ElementsAre(1, 2, 3));
}

TEST_F(BinaryAnswerTest, CodeOneAnswersNothingAndStaysTheCallers) {
    const unsigned int before = ProcessResponse::m_counter;
    const ProcessResponse plain(1, "not sent");
    const ProcessResponseTavrin tavrin(1, "not sent");
    EXPECT_THAT(exec(const_cast<ProcessResponse*>(&plain)), IsEmpty());
    EXPECT_THAT(exec(const_cast<ProcessResponseTavrin*>(&tavrin)), IsEmpty());
    EXPECT_THAT(m_listener.frames, IsEmpty());
    EXPECT_EQ(ProcessResponse::m_counter, before + 2);
}

TEST_F(BinaryAnswerTest, AnErrorIsItsTextAheadAndEightBytes) {
    const Rows<unsigned int, Bytes> rows = {
        {0x00000002, {0x00, 0x00, 0x00, 0x02}}, {0x00000123, {0x00, 0x00, 0x01, 0x23}},
        {0x01010000, {0x01, 0x01, 0x00, 0x00}}, {0x12345678, {0x12, 0x34, 0x56, 0x78}},
        {0x80000000, {0x80, 0x00, 0x00, 0x00}}, {0xFFFFFFFF, {0xFF, 0xFF, 0xFF, 0xFF}},
    };
    for (const auto& [code, status] : rows) {
        SCOPED_TRACE(code);
        Bytes expected = {0x08, 'D', 0xA2, 0xA3};
        expected.insert(expected.end(), status.begin(), status.end());
        m_listener.frames.clear();
        EXPECT_EQ(exec(new ProcessResponse(code, "abc")), expected);
        EXPECT_EQ(exec(new ProcessResponseAscii(code, "abc")), expected);
        auto* filled = new ProcessResponseTavrin(code, "abc");
        filled->data = {1, 2, 3}; // never sent with an error
        EXPECT_EQ(exec(filled), expected);
        const Bytes text = {0x05, 0x64, 'a', 'b', 'c'};
        EXPECT_THAT(m_listener.frames, ElementsAre(text, text, text));
    }
}

TEST_F(BinaryAnswerTest, ADebugFrameCarriesAtMost253Characters) {
    const Rows<std::size_t, unsigned char, std::size_t> rows = {
        {0, 2, 0},       {1, 3, 1},       {252, 254, 252},  {253, 255, 253},
        {254, 255, 253}, {300, 255, 253}, {10000, 255, 253}};
    for (const auto& [textLength, d0, carried] : rows) {
        SCOPED_TRACE(textLength);
        std::string text(textLength, 'x');
        if (!text.empty())
            text.back() = 'z';
        Bytes expected = {d0, 0x64};
        expected.insert(expected.end(), text.begin(), text.begin() + static_cast<long>(carried));
        m_listener.frames.clear();
        command().tavrin_sendAsyncDebug(text);
        command().tavrin_sendAsyncDebug(text.c_str());
        exec(new ProcessResponse(2, "%s", text.c_str()));
        EXPECT_THAT(m_listener.frames, ElementsAre(expected, expected, expected));
    }
}

TEST_F(BinaryAnswerTest, WithoutAListenerTextsAreDropped) {
    command().setListener(nullptr);
    EXPECT_THAT(exec(new ProcessResponse(2, "abc")), ElementsAre(8, 'D', 0xA2, 0xA3, 0, 0, 0, 2));
    command().tavrin_sendAsyncDebug("abc");
    EXPECT_THAT(m_listener.frames, IsEmpty());
}

TEST_F(BinaryAnswerTest, ResponsesAreTakenOver) {
    const unsigned int before = ProcessResponse::m_counter;
    exec(new ProcessResponse(0));
    exec(new ProcessResponse(2, "abc"));
    exec(new ProcessResponseTavrin(0, ""));
    exec(new ProcessResponseTavrin(2, ""));
    exec(new ProcessResponseAscii(0, ""));
    EXPECT_EQ(ProcessResponse::m_counter, before);
}

TEST_F(BinaryAnswerTest, ARequestWithoutD3CannotBeAnswered) {
    const unsigned int before = ProcessResponse::m_counter;
    for (Bytes request : {Bytes{}, Bytes{0x01}, Bytes{0x02, 'D'}, Bytes{0x03, 'D', 0x09}}) {
        SCOPED_TRACE(request.size());
        for (const unsigned int code : {0u, 2u}) {
            m_listener.frames.clear();
            EXPECT_THAT([&] { command().tavrin_exec(&request, new ProcessResponse(code, "abc")); },
                        ThrowsMessage<std::out_of_range>("invalid vector<T> subscript"));
            if (code == 0)
                EXPECT_THAT(m_listener.frames, ElementsAre(debugFrame(kTooShort)));
            else
                EXPECT_THAT(m_listener.frames, ElementsAre(debugFrame("abc"), debugFrame(kTooShort)));
        }
    }
    EXPECT_THROW(command().tavrin_exec(nullptr, new ProcessResponseTavrin(0, "")), std::out_of_range);
    EXPECT_EQ(ProcessResponse::m_counter, before);
}

TEST_F(BinaryAnswerTest, FillingAFrameForATooShortRequestThrowsAfterADebugFrame) {
    for (const Bytes& request : {Bytes{}, Bytes{0x03, 'D', 0x09}}) {
        SCOPED_TRACE(request.size());
        m_listener.frames.clear();
        ProcessResponseTavrin response(0, "");
        EXPECT_THROW(command().tavrin_fillDefaultResponse(&request, &response, 0, nullptr),
                     std::out_of_range);
        EXPECT_THAT(m_listener.frames, ElementsAre(debugFrame(kTooShort)));
    }
}

TEST_F(BinaryAnswerTest, APayloadFollowsTheHeaderAndIsCutAt247Bytes) {
    const Rows<unsigned char, unsigned char> rows = {{0, 0},     {1, 1},     {16, 16},   {246, 246},
                                                     {247, 247}, {248, 247}, {250, 247}, {255, 247}};
    for (const auto& [offered, carried] : rows) {
        SCOPED_TRACE(int{offered});
        const Bytes payload = countedBytes(255);
        ProcessResponseTavrin response(0, "");
        command().tavrin_fillDefaultResponse(&kRequest, &response, offered, payload.data());
        Bytes expected = {static_cast<unsigned char>(carried + 8), 'D', 0xA2, 0xA3, 0, 0, 0, 0};
        expected.insert(expected.end(), payload.begin(), payload.begin() + carried);
        EXPECT_EQ(response.data, expected);
        EXPECT_EQ(response.message, offered > 247 ? "Payload truncated. Response is maybe invalid" : "");
    }
    EXPECT_THAT(m_listener.frames, IsEmpty());
}

TEST_F(BinaryAnswerTest, ACutPayloadIsSentWithoutTheMessage) {
    auto* response = new ProcessResponseTavrin(0, "");
    const Bytes payload = countedBytes(250);
    command().tavrin_fillDefaultResponse(&kRequest, response, 250, payload.data());
    const Bytes frame = exec(response);
    ASSERT_EQ(frame.size(), 255u);
    EXPECT_EQ(frame[0], 255);
    EXPECT_EQ(frame.back(), payload[246]);
    EXPECT_THAT(m_listener.frames, IsEmpty());
}

TEST_F(BinaryAnswerTest, WithoutAPayloadItsLengthDoesNotCount) {
    ProcessResponseTavrin response(0x12345678, "");
    response.data = {1, 2, 3};
    command().tavrin_fillDefaultResponse(&kRequest, &response, 16, nullptr);
    EXPECT_THAT(response.data, ElementsAre(8, 'D', 0xA2, 0xA3, 0x12, 0x34, 0x56, 0x78));
}

TEST_F(BinaryAnswerTest, AVectorIsAPayloadOfItsSizeInEightBits) {
    const Rows<std::size_t, std::size_t> rows = {{0, 0},     {1, 1},   {247, 247}, {248, 247},
                                                 {255, 247}, {256, 0}, {257, 1},   {300, 44}};
    for (const auto& [size, carried] : rows) {
        SCOPED_TRACE(size);
        Bytes payload = countedBytes(size);
        ProcessResponseTavrin response(0, "");
        command().tavrin_fillDefaultResponse(&kRequest, &response, payload);
        Bytes expected = {static_cast<unsigned char>(carried + 8), 'D', 0xA2, 0xA3, 0, 0, 0, 0};
        expected.insert(expected.end(), payload.begin(), payload.begin() + static_cast<long>(carried));
        EXPECT_EQ(response.data, expected);
    }
}
