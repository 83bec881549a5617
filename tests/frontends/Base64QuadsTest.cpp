#include "frontends/Base64Quads.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/Rows.h"
#include "wire/Base64.h"

namespace {

struct Decoded {
    std::size_t quads;
    std::string bytes; ///< with what was in the room behind them
};

Decoded decode(const std::string& text) {
    std::string bytes(text.size() / 4 * 3 + 1, '.');
    const std::size_t quads =
        decodeBase64Quads(text.data(), text.size(), reinterpret_cast<unsigned char*>(bytes.data()));
    return {quads, bytes};
}

} // namespace

TEST(Base64QuadsTest, StopsBeforeTheFirstQuadThatIsNotWhole) {
    const Rows<const char*, std::size_t, const char*> rows = {
        {"", 0, "."},
        {"QUJ", 0, "."},
        {"QUJD", 1, "ABC."},
        {"QUJDREVG", 2, "ABCDEF."},
        {"QUJDREV", 1, "ABC."},
        {"QUJDREU=", 1, "ABC...."},
        {"QUJDRA==", 1, "ABC...."},
        {"=UJD", 0, "...."},
        {"QUJDRE G", 1, "ABC...."},
        {"QUJD-EVGQUJD", 1, "ABC......."},
        {"QUJD\xFFUJDQUJD", 1, "ABC......."},
        {"+/+/", 1, "\xFB\xFF\xBF."},
    };
    for (const auto& [text, quads, bytes] : rows) {
        SCOPED_TRACE(text);
        const Decoded decoded = decode(text);
        EXPECT_EQ(decoded.quads, quads);
        EXPECT_EQ(decoded.bytes, bytes);
    }
}

TEST(Base64QuadsTest, ARunEndsBeforeTheFirstForeignCharacter) {
    const Rows<const char*, std::size_t> rows = {{"", 0},
                                                 {")", 0},
                                                 {"QUJD)", 4},
                                                 {"AZaz09+/=)", 9},
                                                 {"=", 1},
                                                 {"Q==QUJD-", 7},
                                                 {"QUJ D", 3},
                                                 {"QUJ\nD", 3},
                                                 {"A\xC1", 1},
                                                 {"QUJD\x03"
                                                  "ABCD",
                                                  4},
                                                 {"A_B", 1},
                                                 {"A,", 1}};
    for (const auto& [text, length] : rows)
        EXPECT_EQ(base64RunLength(text, std::strlen(text)), length) << text;
    EXPECT_EQ(base64RunLength("QUJD", 2), 2U);
}

TEST(Base64QuadsTest, AgreesWithTheSystemsDecoder) {
    std::minstd_rand random(1);
    for (int round = 0; round < 1000; ++round) {
        std::vector<unsigned char> bytes(3 * (random() % 100));
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(random() >> 8);
        const Decoded decoded = decode(System::encodeBase64(bytes.data(), bytes.size()));
        EXPECT_EQ(decoded.quads, bytes.size() / 3);
        EXPECT_EQ(decoded.bytes, std::string(bytes.begin(), bytes.end()) + ".");
    }
}

TEST(Base64QuadsTest, EachCharacterHasItsValueOrNone) {
    for (int code = 1; code < 256; ++code) {
        SCOPED_TRACE(code);
        const std::string text = std::string("AAA") + static_cast<char>(code);
        std::vector<unsigned char> expected(3, '.');
        const bool isKnown = code != '=' && System::decodeBase64(text.c_str(), expected.data(), 3) == 3;
        const Decoded decoded = decode(text);
        EXPECT_EQ(decoded.quads, isKnown ? 1U : 0U);
        if (isKnown) {
            EXPECT_EQ(decoded.bytes, std::string(expected.begin(), expected.end()) + ".");
        }
    }
}
