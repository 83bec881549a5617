#include "platform/Descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

using System::Descriptor;

namespace {

int openNull() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool isOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) != -1;
}

} // namespace

TEST(DescriptorTest, IsEmptyByDefault) {
    const Descriptor empty;
    EXPECT_FALSE(empty);
    EXPECT_EQ(empty.get(), -1);
}

TEST(DescriptorTest, AFailedOpenGivesAnEmptyOne) {
    EXPECT_FALSE(Descriptor(::open("/does/not/exist", O_RDONLY)));
}

TEST(DescriptorTest, ClosesWhatItOwns) {
    const int number = openNull();
    {
        const Descriptor owner(number);
        EXPECT_TRUE(owner);
        EXPECT_EQ(owner.get(), number);
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(DescriptorTest, MovingHandsTheDescriptorOver) {
    const int number = openNull();
    Descriptor first(number);
    Descriptor second(std::move(first));
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what is left is asked for
    EXPECT_EQ(first.get(), -1);
    EXPECT_EQ(second.get(), number);
    Descriptor third;
    third = std::move(second);
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what is left is asked for
    EXPECT_EQ(second.get(), -1);
    EXPECT_EQ(third.get(), number);
    EXPECT_TRUE(isOpen(number));
}

TEST(DescriptorTest, AssigningClosesWhatWasOwnedBefore) {
    const int earlier = openNull();
    const int later = openNull();
    Descriptor owner(earlier);
    owner = Descriptor(later);
    EXPECT_FALSE(isOpen(earlier));
    EXPECT_TRUE(isOpen(later));
    EXPECT_EQ(owner.get(), later);
}

TEST(DescriptorTest, AssigningToItselfKeepsIt) {
    const int number = openNull();
    Descriptor owner(number);
    Descriptor& same = owner;
    owner = std::move(same);
    EXPECT_EQ(owner.get(), number);
    EXPECT_TRUE(isOpen(number));
}

TEST(DescriptorTest, ReleaseGivesItAwayUnclosed) {
    Descriptor owner(openNull());
    const int number = owner.release();
    EXPECT_FALSE(owner);
    EXPECT_TRUE(isOpen(number));
    ::close(number);
}

TEST(DescriptorTest, ResetClosesAndKeepsErrno) {
    const int number = openNull();
    Descriptor owner(number);
    errno = EDOM;
    owner.reset();
    EXPECT_EQ(errno, EDOM);
    EXPECT_FALSE(owner);
    EXPECT_FALSE(isOpen(number));
    // Closing fails for a number that is not open; whoever owns it does not get to see that.
    owner.reset(number);
    errno = EDOM;
    owner.reset();
    EXPECT_EQ(errno, EDOM);
}
