#include "unit/InPlaceTree.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>

#include "support/TestFiles.h"
#include "support/UnitErrors.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

namespace fs = std::filesystem;
using namespace headunit_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class InPlaceTreeTest : public testing::Test {
protected:
    TestFolder m_machine;
    std::string m_record = m_machine / "record";
};

TEST_F(InPlaceTreeTest, RemovesEverythingItMade) {
    {
        InPlaceTree tree(m_record);
        tree.createFile(m_machine / "dev/nvsku/rev", "1A\n");
        tree.createFile(m_machine / "dev/nvsku/serial_num", "7\n");
        EXPECT_EQ(contentOf(m_machine / "dev/nvsku/rev"), "1A\n");
    }
    EXPECT_THAT(m_machine.names(), IsEmpty());
}

TEST_F(InPlaceTreeTest, LeavesFoldersThatWereThere) {
    fs::create_directories(m_machine / "dev");
    { InPlaceTree(m_record).createFile(m_machine / "dev/nvsku/rev", "1A\n"); }
    EXPECT_THAT(m_machine.names(), ElementsAre("dev"));
    EXPECT_TRUE(fs::is_empty(m_machine / "dev"));
}

TEST_F(InPlaceTreeTest, RefusesANameThatExistsAndTakesBackWhatItMadeBefore) {
    fs::create_directories(m_machine / "dev");
    writeFile(m_machine / "dev/taken", "theirs");
    {
        InPlaceTree tree(m_record);
        tree.createFile(m_machine / "ifs/version", "1");
        EXPECT_THAT(unitErrorOf([&] { tree.createFile(m_machine / "dev/taken", "ours"); }),
                    HasSubstr(m_machine / "dev/taken exists on this machine"));
    }
    EXPECT_EQ(contentOf(m_machine / "dev/taken"), "theirs");
    EXPECT_THAT(m_machine.names(), ElementsAre("dev"));
}

TEST_F(InPlaceTreeTest, RefusesALinkToNowhere) {
    fs::create_symlink("nowhere", m_machine / "node");
    InPlaceTree tree(m_record);
    EXPECT_THROW(tree.createFile(m_machine / "node", "1"), UnitError);
    EXPECT_FALSE(fs::exists(m_machine / "nowhere"));
}

TEST_F(InPlaceTreeTest, KeepsAFolderInWhichSomebodyElseLeftAFile) {
    {
        InPlaceTree tree(m_record);
        tree.createFile(m_machine / "mnt/app/ours", "1");
        writeFile(m_machine / "mnt/app/theirs", "2");
    }
    EXPECT_FALSE(fs::exists(m_machine / "mnt/app/ours"));
    EXPECT_EQ(contentOf(m_machine / "mnt/app/theirs"), "2");
}

TEST_F(InPlaceTreeTest, TakesOverWhatAKilledOneLeftBehind) {
    fs::create_directories(m_machine / "dev/nvsku");
    writeFile(m_machine / "dev/nvsku/rev", "old");
    writeFile(m_record,
              (m_machine / "dev\n") + (m_machine / "dev/nvsku\n") + (m_machine / "dev/nvsku/rev\n"));
    {
        InPlaceTree tree(m_record);
        tree.createFile(m_machine / "dev/nvsku/rev", "new");
        EXPECT_EQ(contentOf(m_machine / "dev/nvsku/rev"), "new");
    }
    EXPECT_THAT(m_machine.names(), IsEmpty());
}

TEST_F(InPlaceTreeTest, WritesANameDownBeforeItExists) {
    InPlaceTree tree(m_record);
    const std::string path = tree.claim(m_machine / "dev/node");
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(contentOf(m_record), (m_machine / "dev\n") + (m_machine / "dev/node\n"));
}

TEST_F(InPlaceTreeTest, IsAloneOnTheMachine) {
    std::optional<InPlaceTree> first(std::in_place, m_record);
    EXPECT_THROW(InPlaceTree second(m_record), UnitError);
    first.reset();
    EXPECT_NO_THROW(InPlaceTree third(m_record));
}

TEST_F(InPlaceTreeTest, NeedsARecord) {
    EXPECT_THROW(InPlaceTree(m_machine / "no/record"), UnitError);
}

} // namespace
} // namespace headunit
