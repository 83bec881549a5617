#include "unit/UnitFolder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "support/TestFiles.h"
#include "support/UnitErrors.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

namespace fs = std::filesystem;
using namespace headunit_test;
using testing::IsEmpty;

class UnitFolderTest : public testing::Test {
protected:
    UnitFolderTest() {
        const char* before = std::getenv("TMPDIR");
        if (before != nullptr)
            m_before = before;
        ::setenv("TMPDIR", m_parent.path().c_str(), 1);
    }

    ~UnitFolderTest() override {
        if (m_before)
            ::setenv("TMPDIR", m_before->c_str(), 1);
        else
            ::unsetenv("TMPDIR");
    }

    TestFolder m_parent;
    std::optional<std::string> m_before;
};

TEST_F(UnitFolderTest, ATemporaryOneLiesInTmpdirAndGoesWithItsOwner) {
    {
        const UnitFolder folder = UnitFolder::temporary();
        EXPECT_EQ(folder.path().rfind(m_parent / "headunit-", 0), 0u) << folder.path();
        EXPECT_TRUE(fs::is_directory(folder.path()));
    }
    EXPECT_THAT(m_parent.names(), IsEmpty());
}

TEST_F(UnitFolderTest, GoesOnceWhenMoved) {
    {
        UnitFolder first = UnitFolder::temporary();
        const UnitFolder second(std::move(first));
        EXPECT_TRUE(fs::is_directory(second.path()));
    }
    EXPECT_THAT(m_parent.names(), IsEmpty());
}

TEST_F(UnitFolderTest, HoldsTheFoldersThatTheUnitSees) {
    const UnitFolder folder = UnitFolder::temporary();
    for (const char* name : {"/dev", "/mnt/app", "/ifs", "/vrk", "/tmp", "/run/headunit"})
        EXPECT_TRUE(fs::is_directory(folder.hostPath(name))) << name;
    struct stat tmp {};
    ASSERT_EQ(::stat(folder.hostPath("/tmp").c_str(), &tmp), 0);
    EXPECT_EQ(tmp.st_mode & 07777, 01777u);
}

TEST_F(UnitFolderTest, RemovalFollowsNoLink) {
    writeFile(m_parent / "precious", "here");
    {
        const UnitFolder folder = UnitFolder::temporary();
        fs::create_directory_symlink(m_parent.path(), folder.hostPath("/tmp/outside"));
    }
    EXPECT_THAT(m_parent.names(), testing::ElementsAre("precious"));
}

TEST_F(UnitFolderTest, CreatesFilesWithExactBytesAndTheFoldersAboveThem) {
    UnitFolder folder = UnitFolder::temporary();
    const std::string bytes("a\0b\n", 4);
    folder.createFile("/dev/some/deep/node", bytes);
    EXPECT_EQ(contentOf(folder.path() + "/dev/some/deep/node"), bytes);
}

TEST_F(UnitFolderTest, AKeptOneIsMadeAndStaysWithWhatItHolds) {
    const std::string path = m_parent / "a/b";
    UnitFolder::kept(path).createFile("/dev/node", "first");
    UnitFolder::kept(path).createFile("/dev/node", "second");
    EXPECT_EQ(contentOf(path + "/dev/node"), "first");
}

TEST_F(UnitFolderTest, AKeptOneIsKnownByItsAbsolutePath) {
    const fs::path before = fs::current_path();
    fs::current_path(m_parent.path());
    const UnitFolder folder = UnitFolder::kept("relative/../unit");
    fs::current_path(before);
    EXPECT_EQ(folder.path(), m_parent / "unit");
}

TEST_F(UnitFolderTest, SaysWhichFolderCannotBeMade) {
    writeFile(m_parent / "file", "");
    EXPECT_THAT(unitErrorOf([&] { UnitFolder::kept(m_parent / "file/unit"); }),
                testing::HasSubstr(m_parent / "file/unit"));
}

TEST(HostFile, IsOverwrittenFromItsStartWithoutBeingCut) {
    const TestFolder folder;
    writeFile(folder / "node", "0\n");
    overwriteHostFile(folder / "node", "1");
    EXPECT_EQ(readHostFile(folder / "node"), "1\n");
}

TEST(HostFile, ThatIsMissingIsAnErrorForBothDirections) {
    const TestFolder folder;
    EXPECT_THROW(readHostFile(folder / "none"), UnitError);
    EXPECT_THROW(overwriteHostFile(folder / "none", "1"), UnitError);
    EXPECT_THAT(folder.names(), IsEmpty());
}

} // namespace
} // namespace headunit
