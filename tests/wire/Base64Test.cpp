#include "wire/Base64.h"

#include <gmock/gmock.h>

#include <vector>

#include "support/Rows.h"

using ::testing::ElementsAreArray;

namespace {

std::string encode(const std::string& bytes) {
    return System::encodeBase64(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

struct Pair {
    std::string bytes;
    std::string text;
};

const Pair kPairs[] = {
    {"", ""},
    {"f", "Zg=="},
    {"fo", "Zm8="},
    {"foo", "Zm9v"},
    {"foob", "Zm9vYg=="},
    {"fooba", "Zm9vYmE="},
    {"foobar", "Zm9vYmFy"},
    {std::string("\0\0\0", 3), "AAAA"},
    {"\xFB\xFF\xBF", "+/+/"},
    {"\xFF", "/w=="},
};

} // namespace

TEST(Base64Test, EncodesWithPaddingAndWithoutLineBreaks) {
    for (const Pair& pair : kPairs) {
        SCOPED_TRACE(pair.text);
        EXPECT_EQ(encode(pair.bytes), pair.text);
    }
    EXPECT_EQ(encode(std::string(300, '\0')), std::string(400, 'A'));
}

TEST(Base64Test, DecodesIntoABufferThatJustFits) {
    for (const Pair& pair : kPairs) {
        SCOPED_TRACE(pair.text);
        // One third more than the padded text stands for is what callers offer.
        std::vector<unsigned char> bytes(pair.text.size() / 4 * 3, 0);
        ASSERT_EQ(System::decodeBase64(pair.text.c_str(), bytes.data(), bytes.size()),
                  static_cast<int>(pair.bytes.size()));
        bytes.resize(pair.bytes.size());
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), pair.bytes);
    }
}

TEST(Base64Test, RefusesMalformedTextAndTextThatDoesNotFit) {
    // The last column is what the buffer holds afterwards.
    const Rows<const char*, const char*, std::size_t, std::vector<unsigned char>> rows = {
        {"foreign character", "QUJD-UJD", 6, {0x41, 0x42, 0x43, 0, 0, 0}},
        {"missing padding", "QUJDQQ", 6, {0x41, 0x42, 0x43, 0x41, 0, 0}},
        {"padding too early", "Q===", 3, {0x40, 0, 0}},
        {"text behind the padding", "QQ==QUJD", 6, {0x41, 0, 0, 0, 0, 0}},
        {"too long for the room", "QUJDREVG", 3, {0x41, 0x42, 0x43}},
    };
    for (const auto& [what, text, room, decoded] : rows) {
        SCOPED_TRACE(what);
        std::vector<unsigned char> bytes(room, 0);
        EXPECT_EQ(System::decodeBase64(text, bytes.data(), bytes.size()), -1);
        EXPECT_THAT(bytes, ElementsAreArray(decoded));
    }
}
