// Libraries that are loaded while the daemon runs.
#include "platform/DriverLibrary.h"

#include <cerrno>
#include <utility>

#include "QnxTest.h"

using System::DriverLibrary;
using ::testing::ElementsAre;

namespace {

class QnxDriverLibraryTest : public QnxTest {};

} // namespace

TEST_F(QnxDriverLibraryTest, ALibraryIsLoadedInModeZeroAndUnloadedOnce) {
    {
        DriverLibrary library = DriverLibrary::load("mv8787bt.so");
        EXPECT_TRUE(library);
        EXPECT_NE(library.symbol("mvbt_drv_entry"), nullptr);
        const DriverLibrary taken = std::move(library);
    }
    EXPECT_THAT(FakeSystem::calls(),
                ElementsAre("dlopen \"mv8787bt.so\" 0", "dlsym set \"mvbt_drv_entry\"", "dlclose set"));
}

TEST_F(QnxDriverLibraryTest, AMissingLibraryIsEmptyAndSaysWhy) {
    FakeSystem::next("dlopen", {-1});
    FakeSystem::fail("access", ENOENT);
    EXPECT_FALSE(DriverLibrary::load("/usr/lib/mv8787bt.so"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_THAT(FakeSystem::calls(),
                ElementsAre("dlopen \"/usr/lib/mv8787bt.so\" 0", "access \"/usr/lib/mv8787bt.so\" 0x4"));
}

TEST_F(QnxDriverLibraryTest, WhatTheLoaderRefusesIsNoLibrary) {
    FakeSystem::next("dlopen", {-1});
    EXPECT_FALSE(DriverLibrary::load("/usr/lib/mv8787bt.so"));
    EXPECT_EQ(errno, ENOEXEC);
    EXPECT_THAT(FakeSystem::calls(),
                ElementsAre("dlopen \"/usr/lib/mv8787bt.so\" 0", "access \"/usr/lib/mv8787bt.so\" 0x4"));
}

TEST_F(QnxDriverLibraryTest, WhatALibraryDoesNotExportIsNull) {
    FakeSystem::next("dlsym", {-1});
    EXPECT_EQ(DriverLibrary::load("mv8787bt.so").symbol("mvbt_drv_entry"), nullptr);
}
