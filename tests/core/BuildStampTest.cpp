#include "core/BuildStamp.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "support/Rows.h"

using ::testing::MatchesRegex;

TEST(BuildStampTest, TheProtocolVersionIsFour) {
    EXPECT_EQ(getProductionVersion(), 4u);
}

TEST(BuildStampTest, PutsTheCompilersDateInOrder) {
    const Rows<const char*, const char*, const char*> rows = {
        {"Jul  9 2019", "08:37:25", "2019/07/ 9 08:37:25"},
        {"Jan  1 2000", "00:00:00", "2000/01/ 1 00:00:00"},
        {"Feb 28 2021", "23:59:59", "2021/02/28 23:59:59"},
        {"Mar 10 2022", "10:11:12", "2022/03/10 10:11:12"},
        {"Apr 30 2023", "01:02:03", "2023/04/30 01:02:03"},
        {"May  5 2024", "12:00:00", "2024/05/ 5 12:00:00"},
        {"Jun 11 2025", "12:00:00", "2025/06/11 12:00:00"},
        {"Aug 12 2026", "12:00:00", "2026/08/12 12:00:00"},
        {"Sep 13 2027", "12:00:00", "2027/09/13 12:00:00"},
        {"Oct 14 2028", "12:00:00", "2028/10/14 12:00:00"},
        {"Nov 15 2029", "12:00:00", "2029/11/15 12:00:00"},
        {"Dec 31 2099", "23:59:59", "2099/12/31 23:59:59"},
        {"Foo 16 2030", "12:00:00", "2030/00/16 12:00:00"},
        {"jul 16 2030", "12:00:00", "2030/00/16 12:00:00"},
        {"Abc 99 9999", "99:99:99", "9999/00/99 99:99:99"},
        {"Jul 9 2019", "12:00:00", ""},
        {"", "12:00:00", ""},
    };
    for (const auto& [date, time, expected] : rows) {
        SCOPED_TRACE(date);
        char stamp[20];
        std::memset(stamp, '#', sizeof stamp);
        formatBuildStamp(date, time, stamp, sizeof stamp);
        EXPECT_STREQ(stamp, expected);
    }
}

TEST(BuildStampTest, FillsItsBufferExactlyAndNoFurther) {
    char stamp[21];
    std::memset(stamp, '#', sizeof stamp);
    formatBuildStamp("Jul  9 2019", "08:37:25", stamp, 20);
    EXPECT_EQ(stamp[19], '\0');
    EXPECT_EQ(stamp[20], '#');
    formatBuildStamp("Jul  9 2019", "08:37:25 and more", stamp, 20);
    EXPECT_STREQ(stamp, "2019/07/ 9 08:37:25");
    EXPECT_EQ(stamp[20], '#');
}

TEST(BuildStampTest, IsTheSameTextAtTheSamePlaceOnEveryCall) {
    const char* const first = getDateTimeString();
    const std::string text = first;
    EXPECT_THAT(text,
                MatchesRegex("20[0-9][0-9]/[01][0-9]/[ 0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9]"));
    EXPECT_EQ(getDateTimeString(), first);
    EXPECT_EQ(text, getDateTimeString());
}
