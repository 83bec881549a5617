#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "unit/FormatText.h"
#include "unit/NameList.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

TEST(FormatText, IsAsLongAsItTakes) {
    const std::string longText(100000, 'x');
    EXPECT_EQ(formatText("<%s> %02X", longText.c_str(), 0xA), "<" + longText + "> 0A");
    EXPECT_EQ(formatText("%s", ""), "");
}

TEST(UnitError, SaysWhatItWasGiven) {
    EXPECT_STREQ(unitError("%s is %d", "%n", 3).what(), "%n is 3");
    EXPECT_STREQ(UnitError("100 %").what(), "100 %");
}

TEST(NameList, SeparatesTheNames) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(listed(Names{}), "");
    EXPECT_EQ(listed(Names{"a"}, ", ", " or "), "a");
    EXPECT_EQ(listed(Names{"a", "b"}, ", ", " or "), "a or b");
    EXPECT_EQ(listed(Names{"a", "b", "c"}, ", ", " or "), "a, b or c");
    EXPECT_EQ(listed(Names{"a", "", "c"}, "|"), "a||c");
    EXPECT_EQ(listed(Names{"", "b"}), ", b");
    EXPECT_STREQ(notOneOf(Names{"a", "b"}, "%s").what(), "'%s' is not one of a, b");
}

} // namespace
} // namespace headunit
