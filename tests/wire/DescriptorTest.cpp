#include "wire/Descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "support/RefusedCalls.h"

using System::Descriptor;

namespace {

int openNull() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool isOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) != -1;
}

/// Ends the process with the result of closing a descriptor that the kernel closes with `error`, or with
/// 255 when the object still owns it.
[[noreturn]] void closeWith(int error) {
    Descriptor owner(openNull());
    refuseSystemCalls({SYS_close}, error);
    const int result = owner.close();
    std::_Exit(owner ? 255 : result);
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

TEST(DescriptorTest, ClosingByHandTellsThatItSucceeded) {
    const int number = openNull();
    Descriptor owner(number);
    errno = EDOM;
    EXPECT_EQ(owner.close(), 0);
    EXPECT_EQ(errno, EDOM);
    EXPECT_FALSE(owner);
    EXPECT_FALSE(isOpen(number));
    EXPECT_EQ(owner.close(), 0) << "there is nothing left to close";
    EXPECT_EQ(Descriptor().close(), 0);
}

TEST(DescriptorTest, ClosingByHandTellsWhyItFailed) {
    const int number = openNull();
    ::close(number);
    Descriptor owner(number);
    errno = EDOM;
    EXPECT_EQ(owner.close(), EBADF);
    EXPECT_EQ(errno, EDOM);
    EXPECT_FALSE(owner);
    EXPECT_EQ(owner.close(), 0) << "it is given up all the same";
}

TEST(DescriptorTest, ClosingIsTriedOnce) {
    for (const int error : {EIO, EINTR, ENOSPC}) {
        SCOPED_TRACE(error);
        EXPECT_EXIT(closeWith(error), ::testing::ExitedWithCode(error), "");
    }
}
