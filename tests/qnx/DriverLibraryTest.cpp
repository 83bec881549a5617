// Libraries that are loaded while the daemon runs.
#include "platform/DriverLibrary.h"

#include <cerrno>
#include <utility>

#include "QnxTest.h"
#include "support/ErrorNumber.h"

using System::DriverLibrary;

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
    EXPECT_CALLS("dlopen \"mv8787bt.so\" 0", "dlsym set \"mvbt_drv_entry\"", "dlclose set");
}

TEST_F(QnxDriverLibraryTest, AMissingLibraryIsEmptyAndSaysWhy) {
    FakeSystem::next("dlopen", {-1});
    FakeSystem::fail("access", ENOENT);
    EXPECT_EQ(errorOf(DriverLibrary::load("/usr/lib/mv8787bt.so")), ENOENT);
    EXPECT_CALLS("dlopen \"/usr/lib/mv8787bt.so\" 0", "access \"/usr/lib/mv8787bt.so\" 0x4");
}

TEST_F(QnxDriverLibraryTest, WhatTheLoaderRefusesIsNoLibrary) {
    FakeSystem::next("dlopen", {-1});
    EXPECT_EQ(errorOf(DriverLibrary::load("/usr/lib/mv8787bt.so")), ENOEXEC);
    EXPECT_CALLS("dlopen \"/usr/lib/mv8787bt.so\" 0", "access \"/usr/lib/mv8787bt.so\" 0x4");
}

TEST_F(QnxDriverLibraryTest, WhatALibraryDoesNotExportIsNull) {
    FakeSystem::next("dlsym", {-1});
    EXPECT_EQ(DriverLibrary::load("mv8787bt.so").symbol("mvbt_drv_entry"), nullptr);
}
