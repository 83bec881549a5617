#include "platform/PathWait.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "support/DescriptorLimit.h"
#include "support/FolderFixture.h"
#include "support/SleepingThread.h"
#include "support/Waiting.h"

using System::PathWait;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Much longer than anything here takes that is not waited out.
constexpr std::chrono::milliseconds kLong = std::chrono::minutes(5);
constexpr std::chrono::milliseconds kAtOnce = std::chrono::minutes(1);
constexpr std::chrono::milliseconds kShort{100};

/// A folder, and a thread that waits for what appears there.
class PathWaitTest : public FolderFixture {
protected:
    fs::path in(const std::string& name) const { return m_folder / name; }

    static void make(const fs::path& file) { std::ofstream(file) << "x"; }

    bool waitFor(const fs::path& path, std::chrono::milliseconds longest) {
        return m_wait.waitFor(path.c_str(), longest);
    }

    /// Lets `change` happen when somebody already waits for `path`, which it brings into being.
    void expectSeen(const fs::path& path, const std::function<void()>& change) {
        SleepingThread waiter;
        std::atomic<bool> isSeen{false};
        const auto begin = Clock::now();
        std::thread waiting([&] {
            waiter.isMe();
            isSeen = waitFor(path, kLong);
        });
        EXPECT_TRUE(waiter.fallsAsleep());
        EXPECT_FALSE(isSeen);
        change();
        waiting.join();
        EXPECT_TRUE(isSeen);
        EXPECT_LT(Clock::now() - begin, kAtOnce);
    }

    PathWait m_wait;
};

std::chrono::nanoseconds processorTime() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

int freeDescriptor() {
    const System::Descriptor lowest(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    return lowest.get();
}

} // namespace

TEST_F(PathWaitTest, WhatExistsIsNotWaitedFor) {
    make(in("file"));
    fs::create_directory(in("folder"));
    fs::create_symlink("file", in("link"));
    for (const char* name : {"file", "folder", "link", ""}) {
        EXPECT_TRUE(waitFor(in(name), std::chrono::milliseconds(0))) << name;
        EXPECT_TRUE(waitFor(in(name), kLong)) << name;
    }
    EXPECT_TRUE(waitFor("/", kLong));
    EXPECT_TRUE(waitFor(".", kLong));
}

TEST_F(PathWaitTest, WhatDoesNotExistIsGivenUpAfterTheLimit) {
    const auto begin = Clock::now();
    EXPECT_FALSE(waitFor(in("file"), kShort));
    EXPECT_GE(Clock::now() - begin, kShort);
    EXPECT_FALSE(waitFor(in("no/such/folder/file"), kShort));
    EXPECT_FALSE(waitFor("no-such-file-in-the-working-folder", kShort));
    EXPECT_FALSE(waitFor("", kShort));
}

TEST_F(PathWaitTest, WithoutALimitToWaitItOnlyLooks) {
    const auto begin = Clock::now();
    EXPECT_FALSE(waitFor(in("file"), std::chrono::milliseconds(0)));
    EXPECT_LT(Clock::now() - begin, kAtOnce);
}

TEST_F(PathWaitTest, AFileThatIsMadeIsSeen) {
    expectSeen(in("file"), [&] { make(in("file")); });
}

TEST_F(PathWaitTest, AFileThatIsMovedInIsSeen) {
    fs::create_directory(in("elsewhere"));
    make(in("elsewhere/file"));
    expectSeen(in("file"), [&] { fs::rename(in("elsewhere/file"), in("file")); });
}

TEST_F(PathWaitTest, ALinkThatAppearsIsSeen) {
    make(in("target"));
    expectSeen(in("link"), [&] { fs::create_symlink("target", in("link")); });
}

TEST_F(PathWaitTest, AFolderMovedInWithTheFileIsSeen) {
    fs::create_directories(in("prepared/inner"));
    make(in("prepared/inner/file"));
    expectSeen(in("final/inner/file"), [&] { fs::rename(in("prepared"), in("final")); });
}

TEST_F(PathWaitTest, FoldersMayAppearOneAfterTheOther) {
    const fs::path path = in("one/two/three/file");
    expectSeen(path, [&] {
        for (const char* folder : {"one", "one/two", "one/two/three"}) {
            fs::create_directory(in(folder));
            EXPECT_FALSE(fs::exists(path));
        }
        make(path);
    });
}

TEST_F(PathWaitTest, FoldersMayAppearAllAtOnce) {
    for (int round = 0; round < 20; ++round) {
        const std::string top = "round" + std::to_string(round);
        expectSeen(in(top + "/two/three/file"), [&] {
            fs::create_directories(in(top + "/two/three"));
            make(in(top + "/two/three/file"));
        });
    }
}

TEST_F(PathWaitTest, AFolderThatGoesAndComesBackIsFollowed) {
    fs::create_directory(in("folder"));
    expectSeen(in("folder/file"), [&] {
        fs::remove(in("folder"));
        fs::create_directory(in("folder"));
        make(in("folder/file"));
    });
}

TEST_F(PathWaitTest, AnotherFileIsNotWhatIsWaitedFor) {
    expectSeen(in("file"), [&] {
        for (int other = 0; other < 100; ++other)
            make(in("file" + std::to_string(other)));
        make(in("file"));
    });
}

TEST_F(PathWaitTest, ADanglingLinkIsNothing) {
    fs::create_symlink("nothing", in("link"));
    EXPECT_FALSE(waitFor(in("link"), kShort));
}

TEST_F(PathWaitTest, ALinkThatIsReplacedByOneThatLeadsSomewhereIsSeen) {
    make(in("target"));
    fs::create_symlink("nothing", in("link"));
    expectSeen(in("link"), [&] {
        fs::create_symlink("target", in("fresh"));
        fs::rename(in("fresh"), in("link"));
    });
}

TEST_F(PathWaitTest, TheTargetOfADanglingLinkBesideItIsSeen) {
    fs::create_symlink("target", in("link"));
    expectSeen(in("link"), [&] { make(in("target")); });
}

TEST_F(PathWaitTest, TheTargetOfADanglingLinkElsewhereIsFoundInTheEnd) {
    fs::create_directory(in("elsewhere"));
    fs::create_symlink("elsewhere/target", in("link"));
    std::thread making([&] { make(in("elsewhere/target")); });
    EXPECT_TRUE(waitFor(in("link"), std::chrono::milliseconds(1000)));
    making.join();
}

TEST_F(PathWaitTest, WaitingCostsNoProcessorTime) {
    fs::create_symlink("nothing", in("link"));
    for (const fs::path& path : {in("file"), in("no/such/folder/file"), in("link")}) {
        const auto before = processorTime();
        EXPECT_FALSE(waitFor(path, std::chrono::milliseconds(500)));
        EXPECT_LT(processorTime() - before, std::chrono::milliseconds(100)) << path;
    }
}

TEST_F(PathWaitTest, WhatIsInTheWayIsWaitedOut) {
    make(in("file"));
    const auto before = processorTime();
    EXPECT_FALSE(waitFor(in("file/below"), std::chrono::milliseconds(300)));
    EXPECT_LT(processorTime() - before, std::chrono::milliseconds(100));
}

TEST_F(PathWaitTest, OneWaitAfterTheOtherSeesWhatIsNew) {
    for (const char* name : {"one", "two", "three"})
        expectSeen(in(name), [&] { make(in(name)); });
    fs::remove(in("two"));
    EXPECT_FALSE(waitFor(in("two"), kShort));
    expectSeen(in("two"), [&] { make(in("two")); });
}

TEST_F(PathWaitTest, OldNewsDoesNotEndAWait) {
    EXPECT_FALSE(waitFor(in("file"), std::chrono::milliseconds(1)));
    for (int other = 0; other < 300; ++other)
        make(in("other" + std::to_string(other)));
    const auto begin = Clock::now();
    EXPECT_FALSE(waitFor(in("file"), kShort));
    EXPECT_GE(Clock::now() - begin, kShort);
}

// A sanitizer needs descriptors where a thread begins or ends and to look at a fixture, so that these
// two use neither without them.
TEST_F(PathWaitTest, AProcessThatHasRunOutOfDescriptorsStillWaitsWell) {
    const std::string appearing = in("final");
    const std::string missing = in("file");
    fs::create_directory(in("prepared"));
    std::atomic<bool> mayChange{false};
    std::atomic<bool> isOver{false};
    std::thread changing([&, prepared = in("prepared")] {
        EXPECT_TRUE(eventually([&] { return mayChange.load(); }));
        fs::rename(prepared, appearing);
        EXPECT_TRUE(eventually([&] { return isOver.load(); }));
    });
    PathWait wait;
    {
        const NoMoreDescriptors none;
        mayChange = true;
        EXPECT_TRUE(wait.waitFor(appearing.c_str(), kLong));
        EXPECT_FALSE(wait.waitFor(missing.c_str(), kShort));
    }
    isOver = true;
    changing.join();
}

TEST_F(PathWaitTest, WithoutANotifierTheLimitHoldsAllTheSame) {
    const std::string missing = in("file");
    const std::string there = m_folder;
    const NoMoreDescriptors none;
    PathWait wait;
    const auto before = processorTime();
    const auto begin = Clock::now();
    EXPECT_FALSE(wait.waitFor(missing.c_str(), std::chrono::milliseconds(300)));
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(300));
    EXPECT_LT(processorTime() - before, std::chrono::milliseconds(100));
    EXPECT_TRUE(wait.waitFor(there.c_str(), kShort));
}

TEST_F(PathWaitTest, AWaitKeepsOneDescriptorThatCannotBeInherited) {
    const int before = freeDescriptor();
    {
        PathWait wait;
        EXPECT_FALSE(wait.waitFor(in("file").c_str(), kShort));
        EXPECT_FALSE(wait.waitFor(in("no/such/file").c_str(), kShort));
        EXPECT_EQ(::fcntl(before, F_GETFD), FD_CLOEXEC);
        EXPECT_GT(freeDescriptor(), before);
    }
    EXPECT_EQ(freeDescriptor(), before);
}
