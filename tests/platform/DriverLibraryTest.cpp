#include "platform/DriverLibrary.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <utility>

#include "support/ErrorNumber.h"
#include "support/FolderFixture.h"

using System::DriverLibrary;

namespace {

// Every program here needs it, and it is on the loader's path.
constexpr char kSomeLibrary[] = "libm.so.6";

class DriverLibraryTest : public FolderFixture {};

} // namespace

TEST_F(DriverLibraryTest, LoadsFromTheLoadersPathAndFindsSymbols) {
    const DriverLibrary library = DriverLibrary::load(kSomeLibrary);
    ASSERT_TRUE(library);
    EXPECT_NE(library.symbol("cos"), nullptr);
    EXPECT_EQ(library.symbol("no such symbol"), nullptr);
}

TEST_F(DriverLibraryTest, AnEmptyOneHasNoSymbols) {
    const DriverLibrary none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.symbol("cos"), nullptr);
}

TEST_F(DriverLibraryTest, AMissingLibraryIsAnError) {
    for (const char* name : {"no-such-library.so", "/no/such/library.so"}) {
        errno = 0;
        EXPECT_EQ(errorOf(DriverLibrary::load(name)), ENOENT) << name;
    }
}

TEST_F(DriverLibraryTest, ALibraryThatLacksAFunctionIsAnError) {
    EXPECT_FALSE(DriverLibrary::load(INCOMPLETE_LIBRARY));
}

TEST_F(DriverLibraryTest, WhatIsNoLibraryIsAnError) {
    const std::string file = m_folder / "text.so";
    std::ofstream(file) << std::string(8192, 'x');
    errno = 0;
    EXPECT_NE(errorOf(DriverLibrary::load(file.c_str())), 0);
}

TEST_F(DriverLibraryTest, MovesToAnotherOwner) {
    DriverLibrary first = DriverLibrary::load(kSomeLibrary);
    DriverLibrary second = std::move(first);
    ASSERT_TRUE(second);
    DriverLibrary third;
    third = std::move(second);
    EXPECT_TRUE(third);
    EXPECT_NE(third.symbol("cos"), nullptr);
}
