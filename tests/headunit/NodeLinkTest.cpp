#include "serial/NodeLink.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "support/TestFiles.h"
#include "support/UnitErrors.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

namespace fs = std::filesystem;
using namespace headunit_test;
using testing::HasSubstr;
using testing::IsEmpty;

class NodeLinkTest : public testing::Test {
protected:
    TestFolder m_folder;
    std::string m_path = m_folder / "node";
};

TEST_F(NodeLinkTest, StandsUntilItIsRemoved) {
    NodeLink link(m_path, "/dev/pts/7");
    EXPECT_EQ(fs::read_symlink(m_path), "/dev/pts/7");
    link.remove();
    EXPECT_THAT(m_folder.names(), IsEmpty());
    link.remove();
}

TEST_F(NodeLinkTest, GoesWithItsOwnerOnce) {
    {
        NodeLink first(m_path, "/dev/pts/7");
        const NodeLink second(std::move(first));
        NodeLink third;
        third = NodeLink(m_folder / "other", "/dev/pts/8");
        EXPECT_TRUE(fs::is_symlink(m_path));
        EXPECT_TRUE(fs::is_symlink(m_folder / "other"));
    }
    EXPECT_THAT(m_folder.names(), IsEmpty());
}

TEST_F(NodeLinkTest, TakesThePlaceOfOneOfAnEarlierRun) {
    fs::create_symlink("/dev/pts/123456", m_path);
    const NodeLink link(m_path, "/dev/pts/7");
    EXPECT_EQ(fs::read_symlink(m_path), "/dev/pts/7");
}

TEST_F(NodeLinkTest, LeavesEverythingElseAlone) {
    writeFile(m_path, "theirs");
    for (const std::string target : {"/dev/pts/ptmx", "/dev/pts/", "/dev/pts/7/x", "/dev/null"}) {
        fs::remove(m_folder / "link");
        fs::create_symlink(target, m_folder / "link");
        EXPECT_THROW(NodeLink(m_folder / "link", "/dev/pts/7"), UnitError) << target;
        EXPECT_EQ(fs::read_symlink(m_folder / "link"), target);
    }
    EXPECT_THAT(unitErrorOf([&] { const NodeLink link(m_path, "/dev/pts/7"); }),
                HasSubstr(m_path + " exists and is no link to a terminal; it is left as it is"));
    EXPECT_EQ(contentOf(m_path), "theirs");
}

TEST_F(NodeLinkTest, SaysWhyItCannotBeMade) {
    EXPECT_THAT(unitErrorOf([&] { const NodeLink link(m_folder / "none/node", "/dev/pts/7"); }),
                HasSubstr("none/node: No such file or directory"));
}

TEST_F(NodeLinkTest, DoesNotRemoveWhatSomebodyPutInItsPlace) {
    {
        const NodeLink link(m_path, "/dev/pts/7");
        fs::remove(m_path);
        writeFile(m_path, "theirs");
    }
    EXPECT_EQ(contentOf(m_path), "theirs");
}

} // namespace
} // namespace headunit
