#include "transfer/PartialFile.h"

#include <sys/stat.h>

#include "TransferTest.h"

namespace station {
namespace {

using PartialFileTest = TransferTest;

TEST_F(PartialFileTest, GetsItsNameInTheEnd) {
    {
        PartialFile file(path("file"));
        file.append("one");
        EXPECT_FALSE(exists(path("file")));
        EXPECT_EQ(contentOf(path("file.part")), "one");
        file.append(" two");
        file.complete();
    }
    EXPECT_EQ(contentOf(path("file")), "one two");
    EXPECT_FALSE(exists(path("file.part")));
}

TEST_F(PartialFileTest, LeavesAPartThatTheNextOneWritesOver) {
    PartialFile(path("file")).append("unfinished");
    EXPECT_EQ(contentOf(path("file.part")), "unfinished");
    PartialFile file(path("file"));
    file.append("new");
    EXPECT_EQ(contentOf(path("file.part")), "new");
}

TEST_F(PartialFileTest, LeavesNothingWhenNothingCame) {
    { const PartialFile file(path("file")); }
    EXPECT_FALSE(exists(path("file")));
    EXPECT_FALSE(exists(path("file.part")));
}

TEST_F(PartialFileTest, LeavesThePartOfAnotherAlone) {
    PartialFile file(path("file"));
    file.append("mine");
    EXPECT_THROW(PartialFile(path("file")), Failure);
    EXPECT_EQ(contentOf(path("file.part")), "mine");
    file.complete();
    EXPECT_EQ(contentOf(path("file")), "mine");
}

TEST_F(PartialFileTest, ReplacesWhatALinkLeadsTo) {
    std::ofstream(path("behind")) << "old";
    std::filesystem::create_symlink("behind", path("file"));
    PartialFile file(path("file"));
    file.append("new");
    file.complete();
    EXPECT_EQ(contentOf(path("behind")), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(path("file")));
}

TEST_F(PartialFileTest, WritesThroughNoLink) {
    std::filesystem::create_symlink("/dev/full", path("file.part"));
    EXPECT_THROW(PartialFile(path("file")), std::system_error);
}

TEST_F(PartialFileTest, ChecksItsPlace) {
    EXPECT_NO_THROW(checkDestination(path("file")));
    EXPECT_THROW(checkDestination(path("")), Failure);
    EXPECT_THROW(checkDestination(path("none/file")), Failure);
    EXPECT_THROW(checkDestination(path("file/")), Failure);
    EXPECT_THROW(checkDestination(""), Failure);
    EXPECT_THROW(checkDestination("/dev/null"), Failure);
}

} // namespace
} // namespace station
