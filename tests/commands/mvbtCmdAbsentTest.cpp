// The Bluetooth link without a driver library.
#include "commands/mvbtCmd.h"

#include <gtest/gtest.h>

TEST(mvbtCmdAbsentTest, AMissingLibraryIsTold) {
    mvbtCmd link;
    for (int time = 0; time < 2; ++time) {
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(link.open(), -1);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "/usr/lib/mv8787bt.so: No such file or directory\nDLL open failed\n");
        EXPECT_FALSE(link.checkDll());
        EXPECT_EQ(link.close(), 0);
    }
}
