// The socket library's codec.
#include "wire/Base64.h"

#include "QnxTest.h"

using ::testing::ElementsAre;

namespace {

class QnxBase64Test : public QnxTest {};

} // namespace

TEST_F(QnxBase64Test, BytesAreEncodedIntoTheirTextAndATerminatingZero) {
    const unsigned char bytes[] = {0x61, 0x62, 0x63, 0x64};
    FakeSystem::next("__b64_ntop", {8, 0, {'Y', 'W', 'J', 'j', 'Z', 'A', '=', '=', 0}});
    EXPECT_EQ(System::encodeBase64(bytes, sizeof bytes), "YWJjZA==");
    EXPECT_CALLS("__b64_ntop [61626364] 4 9");
}

TEST_F(QnxBase64Test, NothingIsEncodedAsNothing) {
    EXPECT_EQ(System::encodeBase64(nullptr, 0), "");
    EXPECT_CALLS("__b64_ntop [] 0 1");
}

TEST_F(QnxBase64Test, AnEncoderThatFailsLeavesNoText) {
    const unsigned char byte = 0x61;
    FakeSystem::next("__b64_ntop", {-1, 0, {'Y'}});
    EXPECT_EQ(System::encodeBase64(&byte, 1), "");
}

TEST_F(QnxBase64Test, ATextIsDecodedIntoTheRoomThatThereIs) {
    unsigned char bytes[5] = {};
    FakeSystem::next("__b64_pton", {4, 0, {0x61, 0x62, 0x63, 0x64}});
    EXPECT_EQ(System::decodeBase64("YWJjZA==", bytes, sizeof bytes), 4);
    EXPECT_THAT(bytes, ElementsAre(0x61, 0x62, 0x63, 0x64, 0));
    EXPECT_CALLS("__b64_pton \"YWJjZA==\" 5");
}

TEST_F(QnxBase64Test, AMalformedTextIsTold) {
    unsigned char byte = 0;
    FakeSystem::next("__b64_pton", {-1});
    EXPECT_EQ(System::decodeBase64("Y*", &byte, 1), -1);
}
