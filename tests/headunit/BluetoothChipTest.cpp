#include "devices/BluetoothChip.h"

#include <gmock/gmock.h>

#include "support/Rows.h"

namespace headunit {
namespace {

struct CommandCase {
    const char* title;
    std::string packet;
    std::string event;
};

void PrintTo(const CommandCase& row, std::ostream* out) {
    *out << row.title;
}

class BluetoothCommand : public testing::TestWithParam<CommandCase> {};

TEST_P(BluetoothCommand, IsAnsweredWithOneEvent) {
    BluetoothChip chip;
    chip.take(GetParam().packet);
    ASSERT_TRUE(chip.hasSomethingToSay());
    EXPECT_EQ(chip.next(), GetParam().event);
    EXPECT_FALSE(chip.hasSomethingToSay());
    EXPECT_EQ(chip.commands(), 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, BluetoothCommand,
    testing::Values(CommandCase{"reset", std::string("\x01\x03\x0C\x00", 4),
                                std::string("\x04\x0E\x04\x01\x03\x0C\x00", 7)},
                    CommandCase{
                        "readLocalVersion", std::string("\x01\x01\x10\x00", 4),
                        std::string("\x04\x0E\x0C\x01\x01\x10\x00\x05\x00\x01\x05\xFF\xFF\x00\x02", 15)},
                    CommandCase{"readAddress", std::string("\x01\x09\x10\x00", 4),
                                std::string("\x04\x0E\x0A\x01\x09\x10\x00\x02\x87\x00\x00\x00\x02", 13)},
                    CommandCase{"resetWithParameter", std::string("\x01\x03\x0C\x01x", 5),
                                std::string("\x04\x0E\x04\x01\x03\x0C\x12", 7)},
                    CommandCase{"resetWithMoreThanItSays", std::string("\x01\x03\x0C\x00x", 5),
                                std::string("\x04\x0E\x04\x01\x03\x0C\x12", 7)},
                    CommandCase{"resetWithLessThanItSays", std::string("\x01\x03\x0C\x02x", 5),
                                std::string("\x04\x0E\x04\x01\x03\x0C\x12", 7)},
                    CommandCase{"inquiry", std::string("\x01\x01\x04\x05\x33\x8B\x9E\x08\x00", 9),
                                std::string("\x04\x0F\x04\x01\x01\x01\x04", 7)},
                    CommandCase{"vendors", std::string("\x01\xFF\xFF\x00", 4),
                                std::string("\x04\x0F\x04\x01\x01\xFF\xFF", 7)}),
    titleOf);

TEST(BluetoothChip, PassesOverWhatIsNoCommand) {
    BluetoothChip chip;
    for (const std::string& packet :
         {std::string(), std::string("\x01"), std::string("\x01\x03\x0C", 3),
          std::string("\x02\x01\x00\x00\x00", 5), std::string("\x03\x01\x00\x00", 4),
          std::string("\x04\x0E\x04\x01\x03\x0C\x00", 7), std::string("\x00\x03\x0C\x00", 4)})
        chip.take(packet);
    EXPECT_FALSE(chip.hasSomethingToSay());
}

TEST(BluetoothChip, AnswersInTheOrderOfTheCommands) {
    BluetoothChip chip;
    chip.take(std::string("\x01\x01\x04\x00", 4));
    chip.take(std::string("\x01\x09\x10\x00", 4));
    EXPECT_EQ(chip.unsaid(), 2u);
    EXPECT_EQ(chip.next().substr(0, 2), "\x04\x0F");
    EXPECT_EQ(chip.next().substr(0, 2), "\x04\x0E");
}

TEST(BluetoothChip, ForgetsWithAResetWhatItHadToSay) {
    BluetoothChip chip;
    EXPECT_TRUE(chip.say("unasked"));
    chip.take(std::string("\x01\x03\x0C\x00", 4));
    EXPECT_EQ(chip.unsaid(), 1u);
    EXPECT_EQ(chip.next(), std::string("\x04\x0E\x04\x01\x03\x0C\x00", 7));
}

TEST(BluetoothChip, AnswersNothingWhileItIsSilent) {
    BluetoothChip chip;
    chip.setSilent(true);
    chip.take(std::string("\x01\x03\x0C\x00", 4));
    EXPECT_FALSE(chip.hasSomethingToSay());
    EXPECT_TRUE(chip.say("unasked"));
    EXPECT_EQ(chip.next(), "unasked");
    chip.setSilent(false);
    chip.take(std::string("\x01\x03\x0C\x00", 4));
    EXPECT_EQ(chip.unsaid(), 1u);
    EXPECT_EQ(chip.commands(), 2u);
}

TEST(BluetoothChip, DoesNotCollectWithoutEnd) {
    BluetoothChip chip;
    for (std::size_t i = 0; i < BluetoothChip::kMostUnsaid; ++i)
        ASSERT_TRUE(chip.say("x"));
    EXPECT_FALSE(chip.say("x"));
    chip.take(std::string("\x01\x09\x10\x00", 4));
    EXPECT_EQ(chip.unsaid(), BluetoothChip::kMostUnsaid);
    chip.clear();
    EXPECT_TRUE(chip.say("x"));
}

TEST(BluetoothChip, HasAnAddress) {
    EXPECT_EQ(BluetoothChip::address(), std::string("\x02\x00\x00\x00\x87\x02", 6));
}

} // namespace
} // namespace headunit
