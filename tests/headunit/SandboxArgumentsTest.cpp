#include "unit/SandboxArguments.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "support/Rows.h"

namespace headunit {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

SandboxLayout plainLayout() {
    SandboxLayout layout;
    layout.unitFolder = "/tmp/unit";
    layout.systemFolders = {{"/bin", "usr/bin"}, {"/lib", ""}};
    layout.programFolder = "/home/me/build/bin";
    layout.searchPath = "/usr/bin:/bin";
    return layout;
}

/// Where the words stand next to each other, or the size of `arguments`.
std::size_t placeOf(const std::vector<std::string>& arguments, const std::vector<std::string>& words) {
    const auto place = std::search(arguments.begin(), arguments.end(), words.begin(), words.end());
    return static_cast<std::size_t>(place - arguments.begin());
}

bool has(const std::vector<std::string>& arguments, const std::vector<std::string>& words) {
    return placeOf(arguments, words) < arguments.size();
}

/// The host's folders that are shown at their own path, "w" or "r" and the path, without /usr, /lib.
std::vector<std::string> shares(const SandboxLayout& layout) {
    const std::vector<std::string> arguments = sandboxArguments(layout);
    std::vector<std::string> found;
    for (std::size_t i = placeOf(arguments, {"--tmpfs"}); i + 2 < arguments.size(); ++i) {
        if (arguments[i + 1] != arguments[i + 2])
            continue;
        if (arguments[i] == "--bind")
            found.push_back("w " + arguments[i + 1]);
        if (arguments[i] == "--ro-bind")
            found.push_back("r " + arguments[i + 1]);
    }
    return found;
}

TEST(SandboxArguments, BeginWithTheProgramAndEndWhereTheCommandFollows) {
    const auto arguments = sandboxArguments(plainLayout());
    EXPECT_EQ(arguments.front(), "bwrap");
    EXPECT_EQ(arguments.back(), "--");
    EXPECT_EQ(std::count(arguments.begin(), arguments.end(), "--"), 1);
}

TEST(SandboxArguments, TieTheUnitToItsParentAndKeepItApart) {
    const auto arguments = sandboxArguments(plainLayout());
    for (const char* option :
         {"--die-with-parent", "--unshare-user-try", "--unshare-pid", "--unshare-ipc", "--unshare-uts"})
        EXPECT_THAT(arguments, Contains(option));
}

TEST(SandboxArguments, GiveTheUnitANetworkOfItsOwnOrTheHosts) {
    SandboxLayout layout = plainLayout();
    EXPECT_THAT(sandboxArguments(layout), Contains("--unshare-net"));
    layout.ownNetwork = false;
    EXPECT_THAT(sandboxArguments(layout), Not(Contains("--unshare-net")));
}

TEST(SandboxArguments, ShowTheUnitsFoldersAndTheHostsStandardNodes) {
    const auto arguments = sandboxArguments(plainLayout());
    for (const std::string folder : {"/dev", "/mnt/app", "/ifs", "/vrk", "/tmp", "/run/headunit"})
        EXPECT_TRUE(has(arguments, {"--bind", "/tmp/unit" + folder, folder})) << folder;
    for (const std::string node : {"/dev/null", "/dev/zero", "/dev/full", "/dev/random", "/dev/urandom",
                                   "/dev/tty", "/dev/pts"}) {
        EXPECT_TRUE(has(arguments, {"--dev-bind-try", node, node})) << node;
        EXPECT_GT(placeOf(arguments, {"--dev-bind-try", node, node}),
                  placeOf(arguments, {"--bind", "/tmp/unit/dev", "/dev"}));
    }
}

TEST(SandboxArguments, ShowTheHostsSystemReadOnly) {
    SandboxLayout layout = plainLayout();
    layout.configurationFiles = {"/etc/passwd"};
    const auto arguments = sandboxArguments(layout);
    EXPECT_TRUE(has(arguments, {"--ro-bind", "/usr", "/usr"}));
    EXPECT_TRUE(has(arguments, {"--symlink", "usr/bin", "/bin"}));
    EXPECT_TRUE(has(arguments, {"--ro-bind", "/lib", "/lib"}));
    EXPECT_TRUE(has(arguments, {"--ro-bind-try", "/etc/passwd", "/etc/passwd"}));
    EXPECT_TRUE(has(arguments, {"--proc", "/proc"}));
}

TEST(SandboxArguments, SetTheEnvironmentAndTheWorkingDirectory) {
    SandboxLayout layout = plainLayout();
    layout.workingDirectory = "/home/me";
    const auto arguments = sandboxArguments(layout);
    EXPECT_TRUE(has(arguments, {"--setenv", "TMPDIR", "/tmp"}));
    EXPECT_TRUE(has(arguments, {"--setenv", "PATH", "/home/me/build/bin:/usr/bin:/bin"}));
    EXPECT_TRUE(has(arguments, {"--setenv", "LD_LIBRARY_PATH", "/vrk/lib"}));
    EXPECT_TRUE(has(arguments, {"--chdir", "/home/me", "--"}));
    layout.libraryPath = "/a:/b";
    EXPECT_TRUE(has(sandboxArguments(layout), {"--setenv", "LD_LIBRARY_PATH", "/vrk/lib:/a:/b"}));
    layout.searchPath.clear();
    EXPECT_TRUE(has(sandboxArguments(layout), {"--setenv", "PATH", "/home/me/build/bin"}));
}

TEST(SandboxArguments, ShowTheProgramsFolderReadOnly) {
    EXPECT_THAT(shares(plainLayout()), ElementsAre("r /home/me/build/bin"));
}

TEST(SandboxArguments, ShowFoldersUnderTheUnitsTmpAfterIt) {
    SandboxLayout layout = plainLayout();
    layout.programFolder = "/tmp/checkout/bin";
    const auto arguments = sandboxArguments(layout);
    EXPECT_LT(placeOf(arguments, {"--bind", "/tmp/unit/tmp", "/tmp"}),
              placeOf(arguments, {"--ro-bind", "/tmp/checkout/bin", "/tmp/checkout/bin"}));
    EXPECT_THAT(shares(layout), ElementsAre("r /tmp/checkout/bin"));
}

struct ShareCase {
    const char* title;
    std::vector<SharedFolder> folders;
    std::vector<std::string> seen;
};

void PrintTo(const ShareCase& row, std::ostream* out) {
    *out << row.title;
}

class SandboxShares : public testing::TestWithParam<ShareCase> {};

TEST_P(SandboxShares, AreSorted) {
    SandboxLayout layout = plainLayout();
    layout.programFolder.clear();
    layout.sharedFolders = GetParam().folders;
    EXPECT_EQ(shares(layout), GetParam().seen);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SandboxShares,
    testing::Values(
        ShareCase{"outerFirst", {{"/w/a/b", true}, {"/w/a", false}}, {"r /w/a", "w /w/a/b"}},
        ShareCase{"writableOneOfTwoEqual", {{"/w", false}, {"/w", true}, {"/w", false}}, {"w /w"}},
        ShareCase{"visibleInAnother", {{"/w", true}, {"/w/bin", false}}, {"w /w"}},
        ShareCase{"similarNamesAreNotNested", {{"/w", true}, {"/wide", false}}, {"w /w", "r /wide"}},
        ShareCase{"usrIsVisibleAnyway", {{"/usr/local/bin", false}}, {}},
        ShareCase{"usrMayHoldAWorkingDirectory", {{"/usr/src/x", true}}, {"w /usr/src/x"}},
        ShareCase{"underTheUnitsFolders",
                  {{"/tmp/x", true}, {"/dev/shm/x", true}},
                  {"w /dev/shm/x", "w /tmp/x"}},
        ShareCase{"neverTheRoot", {{"/", true}}, {}}, ShareCase{"neverAbove", {{"/mnt", true}}, {}},
        ShareCase{"neverTmp", {{"/tmp", true}}, {}},
        ShareCase{"neverTheNodes", {{"/dev", true}, {"/dev/pts", true}, {"/dev/shm", true}}, {}},
        ShareCase{"neverProcesses", {{"/proc", true}, {"/proc/1", true}}, {}},
        ShareCase{
            "neverTheSystem", {{"/usr", true}, {"/etc", true}, {"/bin", false}, {"/lib", true}}, {}}),
    titleOf);

} // namespace
} // namespace headunit
