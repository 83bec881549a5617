#include "transfer/Order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "client/Failure.h"
#include "transfer/OrderLine.h"

namespace station {
namespace {

using testing::HasSubstr;

using Words = std::vector<std::string>;

Order parsed(const std::string& name, const Words& arguments) {
    std::ostringstream help;
    const auto order = parseOrder(name, arguments, help);
    EXPECT_EQ(help.str(), "");
    return order.value_or(Order{});
}

std::string refusalOf(const std::string& name, const Words& arguments) {
    try {
        parsed(name, arguments);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), Failure::Kind::InvalidRequest);
        return failure.what();
    }
    ADD_FAILURE() << "not refused";
    return {};
}

TEST(Order, LeavesTheUnitsOwnWordsAlone) {
    EXPECT_TRUE(isTransfer("memory", {"upload", "x"}));
    EXPECT_TRUE(isTransfer("memory", {"download"}));
    EXPECT_TRUE(isTransfer("blockdev", {"dump"}));
    EXPECT_TRUE(isTransfer("blockdev", {"flash"}));
    EXPECT_FALSE(isTransfer("memory", {}));
    EXPECT_FALSE(isTransfer("memory", {"read", "8bit", "1", "0"}));
    EXPECT_FALSE(isTransfer("memory", {"uploads"}));
    EXPECT_FALSE(isTransfer("memory", {"dump"}));
    EXPECT_FALSE(isTransfer("blockdev", {"read", "dump"}));
    EXPECT_FALSE(isTransfer("exec", {"upload"}));
}

TEST(Order, ReadsTheMemoryForms) {
    const Order upload = parsed("memory", {"upload", "a file"});
    EXPECT_EQ(upload.kind, Order::Kind::Upload);
    EXPECT_EQ(upload.name, "memory upload");
    EXPECT_EQ(upload.file, "a file");
    EXPECT_EQ(upload.offset, 0U);
    const Order download =
        parsed("memory", {"download", "--length", "010", "--at", "0x10", "f", "--progress", "bar"});
    EXPECT_EQ(download.kind, Order::Kind::Download);
    EXPECT_EQ(download.offset, 16U);
    EXPECT_EQ(download.length, 8U);
    EXPECT_EQ(download.progress, "bar");
}

TEST(Order, ReadsTheBlockDeviceForms) {
    const Order dump = parsed("blockdev", {"dump", "usb", "1", "f", "--blocks", "3..0x10"});
    EXPECT_EQ(dump.kind, Order::Kind::Dump);
    EXPECT_EQ(dump.device.type, 179U);
    EXPECT_EQ(dump.device.id, 1U);
    ASSERT_TRUE(dump.blocks);
    EXPECT_EQ(dump.blocks->first, 3U);
    EXPECT_EQ(dump.blocks->last, 16U);
    EXPECT_FALSE(parsed("blockdev", {"dump", "177", "0", "f"}).blocks);
    EXPECT_EQ(parsed("blockdev", {"dump", "disk", "0", "f", "--blocks", "7"}).blocks->last, 7U);
    const Order flash = parsed("blockdev", {"flash", "180", "0", "f", "--at", "99"});
    EXPECT_EQ(flash.kind, Order::Kind::Flash);
    EXPECT_EQ(flash.firstBlock, 99U);
}

TEST(Order, RefusesWhatCannotBeFollowed) {
    EXPECT_THAT(refusalOf("memory", {"upload"}), HasSubstr("FILE"));
    EXPECT_THAT(refusalOf("memory", {"upload", "f", "--length", "1"}), HasSubstr("--length"));
    EXPECT_THAT(refusalOf("memory", {"upload", "f", "g"}), HasSubstr("g"));
    EXPECT_THAT(refusalOf("memory", {"download", "f", "--at", "0"}), HasSubstr("--length"));
    EXPECT_THAT(refusalOf("memory", {"download", "f", "--length", "1"}), HasSubstr("--at"));
    for (const char* number : {"x", "-1", "1k", "0x", "08", "99999999999999999999"})
        EXPECT_THAT(refusalOf("memory", {"upload", "f", std::string("--at=") + number}),
                    HasSubstr("invalid offset"));
    EXPECT_THAT(refusalOf("blockdev", {"dump", "tape", "0", "f"}), HasSubstr("invalid device type"));
    EXPECT_THAT(refusalOf("blockdev", {"dump", "176", "0", "f"}), HasSubstr("invalid device type"));
    EXPECT_THAT(refusalOf("blockdev", {"dump", "sd", "256", "f"}), HasSubstr("invalid device id"));
    EXPECT_THAT(refusalOf("blockdev", {"dump", "sd", "0", "f", "--blocks", "5..4"}),
                HasSubstr("the last one is before the first"));
    EXPECT_THAT(refusalOf("blockdev", {"dump", "sd", "0", "f", "--blocks", "5.."}),
                HasSubstr("invalid block number"));
    EXPECT_THAT(refusalOf("blockdev", {"flash", "sd", "0", "f", "--at", "0x80000000"}),
                HasSubstr("invalid block number"));
}

TEST(Order, ShowsItsHelp) {
    std::ostringstream help;
    EXPECT_FALSE(parseOrder("blockdev", {"dump", "--help"}, help));
    EXPECT_THAT(help.str(), HasSubstr("--blocks A..B"));
}

} // namespace
} // namespace station
