#include "core/ProcessResponse.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "core/ProcessResponseAscii.h"
#include "core/ProcessResponseTavrin.h"

static_assert(std::has_virtual_destructor_v<ProcessResponse>);

TEST(ProcessResponseTest, ACodeAloneHasNoMessage) {
    const ProcessResponse response(0x123);
    EXPECT_EQ(response.code, 0x123u);
    EXPECT_EQ(response.message, "");
    EXPECT_EQ(response.protocol, 0);
}

TEST(ProcessResponseTest, EachClassCarriesItsTagAndAFormattedMessage) {
    const ProcessResponse plain(2, "%s %d", "plain", 1);
    EXPECT_EQ(plain.code, 2u);
    EXPECT_EQ(plain.message, "plain 1");
    EXPECT_EQ(plain.protocol, 0);

    const ProcessResponseTavrin tavrin(0xFFFFFFFF, "%s %d", "tavrin", 2);
    EXPECT_EQ(tavrin.code, 0xFFFFFFFFu);
    EXPECT_EQ(tavrin.message, "tavrin 2");
    EXPECT_EQ(tavrin.protocol, 't');
    EXPECT_TRUE(tavrin.data.empty());

    const ProcessResponseAscii ascii(0x10, "%s %d", "ascii", 3);
    EXPECT_EQ(ascii.code, 0x10u);
    EXPECT_EQ(ascii.message, "ascii 3");
    EXPECT_EQ(ascii.protocol, 'a');
    EXPECT_EQ(ascii.answer, "ok");
}

TEST(ProcessResponseTest, AnEmptyFormatGivesAnEmptyMessage) {
    EXPECT_EQ(ProcessResponse(0, "").message, "");
    EXPECT_EQ(ProcessResponseTavrin(0, "").message, "");
    EXPECT_EQ(ProcessResponseAscii(0, "").message, "");
}

TEST(ProcessResponseTest, MessagesOfAnyLengthFit) {
    for (const std::size_t length : {255u, 256u, 257u, 511u, 512u, 513u, 10000u}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        EXPECT_EQ(ProcessResponse(2, "%s", text.c_str()).message, text);
        EXPECT_EQ(ProcessResponseTavrin(2, "%s", text.c_str()).message, text);
        EXPECT_EQ(ProcessResponseAscii(2, "%s", text.c_str()).message, text);
    }
}

TEST(ProcessResponseTest, CountsTheLiveOnesOfAllClasses) {
    const unsigned int before = ProcessResponse::m_counter;
    {
        const ProcessResponse code(0);
        EXPECT_EQ(ProcessResponse::m_counter, before + 1);
        const ProcessResponse formatted(0, "%d", 1);
        EXPECT_EQ(ProcessResponse::m_counter, before + 2);
        const ProcessResponseTavrin tavrin(0, "");
        EXPECT_EQ(ProcessResponse::m_counter, before + 3);
        const ProcessResponseAscii ascii(0, "");
        EXPECT_EQ(ProcessResponse::m_counter, before + 4);
        const ProcessResponse copy(formatted);
        EXPECT_EQ(ProcessResponse::m_counter, before + 5);
        EXPECT_EQ(copy.message, "1");
        ProcessResponseTavrin copyOfTavrin(tavrin);
        EXPECT_EQ(ProcessResponse::m_counter, before + 6);
        copyOfTavrin = tavrin;
        EXPECT_EQ(ProcessResponse::m_counter, before + 6);
    }
    EXPECT_EQ(ProcessResponse::m_counter, before);
}

TEST(ProcessResponseTest, IsDeletedWholeThroughTheBase) {
    const unsigned int before = ProcessResponse::m_counter;
    auto* tavrin = new ProcessResponseTavrin(0, "");
    tavrin->data.assign(10000, 1); // for the leak checker to find
    auto* ascii = new ProcessResponseAscii(0, "");
    ascii->answer.assign(10000, 'x');
    EXPECT_EQ(ProcessResponse::m_counter, before + 2);
    for (ProcessResponse* response :
         {static_cast<ProcessResponse*>(tavrin), static_cast<ProcessResponse*>(ascii)})
        delete response;
    EXPECT_EQ(ProcessResponse::m_counter, before);
}
