#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "devices/BlockMedia.h"
#include "support/Peers.h"
#include "support/UnitErrors.h"

namespace headunit_test {
namespace {

namespace fs = std::filesystem;
using headunit::bootSector;
using testing::HasSubstr;

constexpr std::uint64_t kSize = 64 * 1024 * 1024;

class BlockMediaTest : public PeersTest {
protected:
    void restart(const std::vector<std::string>& wanted = {}) {
        m_peers.reset();
        m_peers.emplace(m_unit, wanted);
    }

    std::string firstSector(const std::string& unitPath) const {
        std::string sector(512, '\0');
        std::ifstream(node(unitPath), std::ios::binary).read(sector.data(), 512);
        return sector;
    }
};

TEST_F(BlockMediaTest, AreSparseImagesThatBegin) {
    for (const auto& [path, label] :
         {std::pair{"/dev/cd0", "HU DISC    "}, std::pair{"/dev/umass/umass0", "HU STICK   "},
          std::pair{"/dev/mnand0", "HU CARD    "}, std::pair{"/dev/fs0", "HU FLASH   "}}) {
        struct stat status {};
        ASSERT_EQ(::stat(node(path).c_str(), &status), 0) << path;
        EXPECT_TRUE(S_ISREG(status.st_mode));
        EXPECT_EQ(static_cast<std::uint64_t>(status.st_size), kSize);
        EXPECT_LT(status.st_blocks * 512, 1024 * 1024) << "a hole takes no room";
        const std::string sector = firstSector(path);
        EXPECT_EQ(sector.substr(0, 11), "\xEB\x3C\x90HEADUNIT");
        EXPECT_EQ(sector.substr(43, 11), label);
        EXPECT_EQ(sector.substr(510), "\x55\xAA");
    }
    EXPECT_FALSE(fs::exists(node("/dev/sda0")));
    EXPECT_FALSE(fs::exists(node("/dev/sdb0")));
}

TEST_F(BlockMediaTest, AreRemovedAndInsertedWithTheirContent) {
    writeFile(node("/dev/umass/umass0"), "written");
    tell("remove umass0");
    EXPECT_FALSE(fs::exists(node("/dev/umass/umass0")));
    EXPECT_THAT(ask("state").text, HasSubstr("umass0 /dev/umass/umass0 removed\n"));
    EXPECT_EQ(ask("remove umass0").text, "umass0 is not inserted");
    tell("insert umass0");
    EXPECT_EQ(contentOf(node("/dev/umass/umass0")), "written");
    EXPECT_THAT(ask("state").text, HasSubstr("umass0 /dev/umass/umass0 inserted\n"));
    EXPECT_EQ(ask("insert umass0").text, "umass0 is inserted already");
}

TEST_F(BlockMediaTest, HardDisksComeWhenTheyAreAskedFor) {
    tell("insert sda0");
    EXPECT_EQ(firstSector("/dev/sda0"), bootSector("HU DISK A"));
    EXPECT_EQ(fs::file_size(node("/dev/sda0")), kSize);
    restart({"sdb0"});
    EXPECT_TRUE(fs::exists(node("/dev/sda0"))) << "the folder is kept";
    EXPECT_EQ(firstSector("/dev/sdb0"), bootSector("HU DISK B"));
}

TEST_F(BlockMediaTest, StayAsTheyWereWhenTheUnitStartsAgain) {
    writeFile(node("/dev/fs0"), "mine");
    writeFile(node("/dev/cd0"), "disc");
    tell("remove cd0");
    restart();
    EXPECT_EQ(contentOf(node("/dev/fs0")), "mine");
    EXPECT_FALSE(fs::exists(node("/dev/cd0")));
    restart({"cd0"});
    EXPECT_EQ(contentOf(node("/dev/cd0")), "disc");
}

TEST_F(BlockMediaTest, NeverOverwriteAnything) {
    tell("remove cd0");
    writeFile(node("/dev/cd0"), "another");
    EXPECT_EQ(ask("insert cd0").text, "cd0 is inserted already");
    EXPECT_THAT(ask("remove cd0").text, HasSubstr("holds another cd0; it is left as it is"));
    EXPECT_EQ(contentOf(node("/dev/cd0")), "another");
    fs::remove(node("/dev/cd0"));
    tell("insert cd0");
    EXPECT_EQ(firstSector("/dev/cd0"), bootSector("HU DISC"));
}

TEST_F(BlockMediaTest, ThatNobodyKnowsAreRefused) {
    m_peers.reset();
    EXPECT_EQ(unitErrorOf([&] { m_peers.emplace(m_unit, std::vector<std::string>{"floppy"}); }),
              "block media: 'floppy' is not one of sda0, sdb0, cd0, umass0, mnand0, fs0");
}

} // namespace
} // namespace headunit_test
