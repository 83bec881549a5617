#include "devices/WlanChip.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "support/Rows.h"
#include "support/WlanPackets.h"

namespace headunit_test {
namespace {

using headunit::WlanChip;

const std::string kAddress("\x02\x00\x00\x00\x87\x01", 6);
const std::string kDescription =
    shorts({1, 0x8787}) + kAddress + shorts({0x30, 1}) + std::string("\x00\x03\x02\x01", 4);

struct CommandCase {
    const char* title;
    std::string command;
    std::string reply;
};

void PrintTo(const CommandCase& row, std::ostream* out) {
    *out << row.title;
}

class WlanCommand : public testing::TestWithParam<CommandCase> {};

TEST_P(WlanCommand, IsAnswered) {
    WlanChip chip;
    EXPECT_EQ(chip.answer(wlanPacket(GetParam().command)), wlanAnswer(GetParam().reply));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, WlanCommand,
    testing::Values(CommandCase{"describe", hostCommand(3, 7, ""), hostCommand(0x8003, 7, kDescription)},
                    CommandCase{"describeWithPayload", hostCommand(3, 0xFFFF, "x"),
                                hostCommand(0x8003, 0xFFFF, kDescription)},
                    CommandCase{"readAddress", hostCommand(0x4D, 1, shorts({0}) + "......"),
                                hostCommand(0x804D, 1, shorts({0}) + kAddress)},
                    CommandCase{"setAddress", hostCommand(0x4D, 2, shorts({1}) + "abcdef"),
                                hostCommand(0x804D, 2, shorts({1}) + "abcdef")},
                    CommandCase{"addressWithoutAddress", hostCommand(0x4D, 3, shorts({0})),
                                hostCommand(0x804D, 3, "", 1)},
                    CommandCase{"addressWithoutAction", hostCommand(0x4D, 3, shorts({2}) + "abcdef"),
                                hostCommand(0x804D, 3, "", 1)},
                    CommandCase{"reset", hostCommand(0xA9, 4, ""), hostCommand(0x80A9, 4, "")},
                    CommandCase{"unknown", hostCommand(0x7777, 5, "abc"), hostCommand(0xF777, 5, "", 2)},
                    CommandCase{"longest", hostCommand(0x7777, 6, std::string(247, 'x')),
                                hostCommand(0xF777, 6, "", 2)}),
    titleOf);

struct BrokenCase {
    const char* title;
    std::size_t place; ///< in the parts
    char value;        ///< instead of the byte there
    std::uint32_t result;
};

void PrintTo(const BrokenCase& row, std::ostream* out) {
    *out << row.title;
}

class BrokenWlanRequest : public testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenWlanRequest, IsRefused) {
    WlanChip chip;
    std::string parts = wlanParts(hostCommand(3, 1, ""));
    parts[GetParam().place] = GetParam().value;
    EXPECT_EQ(chip.answer(requestPacket(0, parts, 303)), numbers({GetParam().result}));
    EXPECT_EQ(chip.requests(), 1u);
    EXPECT_EQ(chip.refused(), 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Parts, BrokenWlanRequest,
    testing::Values(BrokenCase{"messageType", 0, 5, EINVAL}, BrokenCase{"headSize", 2, 15, EINVAL},
                    BrokenCase{"control", 4, 0, ENOTTY}, BrokenCase{"dataSize", 8, 47, EINVAL},
                    BrokenCase{"name", 16, 'x', ENODEV}, BrokenCase{"longerName", 20, '1', ENODEV},
                    BrokenCase{"request", 32, 0, ENOTTY}, BrokenCase{"bufferSize", 36, 4, EINVAL},
                    BrokenCase{"flag", 40, 0, EINVAL}, BrokenCase{"length", 45, 1, EINVAL},
                    BrokenCase{"shortCommand", 50, 7, EINVAL}, BrokenCase{"longCommand", 51, 1, EINVAL}),
    titleOf);

TEST(WlanChip, RefusesWhatIsNoRequest) {
    WlanChip chip;
    const std::string parts = wlanParts(hostCommand(3, 1, ""));
    EXPECT_EQ(chip.answer(""), numbers({EINVAL}));
    EXPECT_EQ(chip.answer(numbers({0, 1, 0, 0})), numbers({EINVAL}));
    EXPECT_EQ(chip.answer(requestPacket(0xC01C697B, parts, 303)), numbers({ENOTTY}));
    for (std::size_t size = 0; size < 56; ++size)
        EXPECT_EQ(chip.answer(requestPacket(0, parts.substr(0, size), 303)), numbers({EINVAL})) << size;
    EXPECT_EQ(chip.refused(), chip.requests());
}

TEST(WlanChip, GivesNoMoreThanThereIsRoomFor) {
    WlanChip chip;
    const std::string parts = wlanParts(hostCommand(3, 1, ""));
    const std::string whole = wlanAnswer(hostCommand(0x8003, 1, kDescription));
    EXPECT_EQ(chip.answer(requestPacket(0, parts, 0)), numbers({0}));
    EXPECT_EQ(chip.answer(requestPacket(0, parts, 60)), whole.substr(0, 64));
}

TEST(WlanChip, KeepsAnAddressUntilItIsReset) {
    WlanChip chip;
    EXPECT_EQ(chip.address(), kAddress);
    chip.answer(wlanPacket(hostCommand(0x4D, 1, shorts({1}) + "abcdef")));
    EXPECT_EQ(chip.address(), "abcdef");
    chip.answer(wlanPacket(hostCommand(0xA9, 2, "")));
    EXPECT_EQ(chip.address(), kAddress);
}

TEST(WlanChip, FailsAsItIsTold) {
    WlanChip chip;
    const std::string packet = wlanPacket(hostCommand(0xA9, 1, ""));
    chip.orderResult(5, 2);
    EXPECT_EQ(chip.answer(packet), numbers({5}));
    EXPECT_EQ(chip.answer("x"), numbers({5}));
    chip.orderRefusal(0x1234, 1);
    EXPECT_EQ(chip.answer(packet), wlanAnswer(hostCommand(0x80A9, 1, "", 0x1234)));
    EXPECT_EQ(chip.refused(), 3u);
    EXPECT_EQ(chip.answer(packet), wlanAnswer(hostCommand(0x80A9, 1, "")));
    EXPECT_EQ(chip.refused(), 3u);
    EXPECT_EQ(chip.requests(), 4u);
}

TEST(WlanChip, SaysThatItsAnswerIsLonger) {
    WlanChip chip;
    const std::string packet = requestPacket(0, wlanParts(hostCommand(0xA9, 1, "")), 1000);
    chip.orderSize(250, 1);
    EXPECT_EQ(chip.answer(packet), wlanAnswer(shorts({0x80A9, 250, 1, 0}) + std::string(242, '\0')));
    chip.orderSize(0xFFFF, 1);
    const std::string longest = chip.answer(packet);
    EXPECT_EQ(longest.size(), 4u + 1000u);
    EXPECT_EQ(longest.substr(0, 60), wlanAnswer(shorts({0x80A9, 0xFFFF, 1, 0})));
    chip.orderSize(4, 1);
    EXPECT_EQ(chip.answer(packet), wlanAnswer(shorts({0x80A9, 4, 1, 0}))) << "nothing is cut off";
    EXPECT_EQ(chip.answer(packet), wlanAnswer(hostCommand(0x80A9, 1, "")));
}

} // namespace
} // namespace headunit_test
