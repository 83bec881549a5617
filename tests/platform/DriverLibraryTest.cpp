#include "platform/DriverLibrary.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "support/ErrorNumber.h"

using System::DriverLibrary;

namespace {

// Every program here needs it, and it is on the loader's path.
constexpr char kSomeLibrary[] = "libm.so.6";

} // namespace

TEST(DriverLibraryTest, LoadsFromTheLoadersPathAndFindsSymbols) {
    const DriverLibrary library = DriverLibrary::load(kSomeLibrary);
    ASSERT_TRUE(library);
    EXPECT_NE(library.symbol("cos"), nullptr);
    EXPECT_EQ(library.symbol("no such symbol"), nullptr);
}

TEST(DriverLibraryTest, AnEmptyOneHasNoSymbols) {
    const DriverLibrary none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.symbol("cos"), nullptr);
}

TEST(DriverLibraryTest, AMissingLibraryIsAnError) {
    for (const char* name : {"no-such-library.so", "/no/such/library.so"}) {
        errno = 0;
        EXPECT_EQ(errorOf(DriverLibrary::load(name)), ENOENT) << name;
    }
}

TEST(DriverLibraryTest, ALibraryThatLacksAFunctionIsAnError) {
    EXPECT_FALSE(DriverLibrary::load(INCOMPLETE_LIBRARY));
}

TEST(DriverLibraryTest, WhatIsNoLibraryIsAnError) {
    std::string path = (std::filesystem::temp_directory_path() / "library-XXXXXX").string();
    ASSERT_NE(::mkdtemp(path.data()), nullptr);
    const std::string file = path + "/text.so";
    std::ofstream(file) << std::string(8192, 'x');
    errno = 0;
    EXPECT_NE(errorOf(DriverLibrary::load(file.c_str())), 0);
    std::filesystem::remove_all(path);
}

TEST(DriverLibraryTest, MovesToAnotherOwner) {
    DriverLibrary first = DriverLibrary::load(kSomeLibrary);
    DriverLibrary second = std::move(first);
    ASSERT_TRUE(second);
    DriverLibrary third;
    third = std::move(second);
    EXPECT_TRUE(third);
    EXPECT_NE(third.symbol("cos"), nullptr);
}
