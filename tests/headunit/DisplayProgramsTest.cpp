#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>

#include "pictures/BitmapFile.h"
#include "pictures/TestPictures.h"
#include "support/HeadunitTest.h"
#include "support/PngPicture.h"

namespace headunit_test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr char kStoredPictures[] = "/mnt/app/vrk/production/";

/// The finished programs in a unit whose folder stays.
class DisplayProgramsTest : public HeadunitTest {
protected:
    std::string outputOf(const std::string& script, const Words& options = {}) {
        return HeadunitTest::outputOf(script, joined({"--unit", m_unit}, options));
    }

    headunit::Picture screen(int display) const {
        return decodePng(contentOf(m_unit + "/display-" + std::to_string(display) + ".png"));
    }

    std::string m_unit = m_temporary / "unit";
};

TEST_F(DisplayProgramsTest, UnpackAndShowEachStoredPicture) {
    for (const headunit::TestPicture& picture : headunit::kTestPictures) {
        const std::string name(picture.name);
        EXPECT_EQ(
            outputOf("cd /vrk/bin/apps && gzip -dc " + std::string(kStoredPictures) + name +
                     ".gz > /tmp/" + name + " && stat -c %s /tmp/" + name +
                     " && ./showimage && ./showimage h 0 && ./showimage h 4 && ./showimage si /tmp/" +
                     name + " && ./showimage s 4 && headunit control state | grep '^display'"),
            "1152054\ndisplay 0 black\ndisplay 4 picture /tmp/" + name + "\n");
        EXPECT_EQ(m_error, "");
        EXPECT_EQ(contentOf(m_unit + "/tmp/" + name), headunit::encodeBitmap(picture.draw()));
        EXPECT_TRUE(areEqual(screen(4), picture.draw()))
            << "it can be looked at when the unit has ended";
        EXPECT_TRUE(areEqual(screen(0), headunit::Picture(800, 480)));
    }
}

TEST_F(DisplayProgramsTest, RouteVideoAndGoBack) {
    EXPECT_EQ(outputOf("PATH=/vrk/bin/apps:$PATH; dmdt dc 99 -125; dmdt sc 0 99; showimage; "
                       "headunit control state | grep -e ^display -e ^viewer; "
                       "showimage q; showimage q; echo $?; dmdt sc 4 1; echo $?; dmdt; echo $?"),
              "viewer running\ndisplay 0 input 3\ndisplay 4 black\n1\n1\n1\n");
    EXPECT_EQ(m_error,
              "showimage: the viewer does not run\ndmdt: content 1 is not defined\n"
              "dmdt: usage: dmdt dc ID VALUE | dmdt sc DISPLAY ID\n");
}

TEST_F(DisplayProgramsTest, FailAsControlSays) {
    EXPECT_EQ(outputOf("PATH=/vrk/bin/apps:$PATH; headunit control display fail dmdt 2; "
                       "dmdt dc 1 2; echo $?; dmdt dc 1 2; echo $?; dmdt dc 1 2; echo $?; "
                       "headunit control display fail showimage; "
                       "headunit control display fail showimage 0; showimage; echo $?; "
                       "headunit control display late 600000; headunit control display late 0; "
                       "showimage q; echo $?"),
              "ok\n1\n1\n0\nok\nok\n0\nok\nok\n0\n");
    EXPECT_EQ(m_error, "dmdt: it was told to fail\ndmdt: it was told to fail\n");
}

TEST_F(DisplayProgramsTest, AreBlackAndUnusedAtEachStart) {
    outputOf("/vrk/bin/apps/showimage");
    EXPECT_TRUE(fs::exists(m_unit + "/display-0.png"));
    EXPECT_EQ(outputOf("headunit control state | grep -e ^display -e ^viewer; ls /run/headunit"),
              "viewer stopped\ndisplay 0 black\ndisplay 4 black\ncontrol\nstation-line\n");
    EXPECT_FALSE(fs::exists(m_unit + "/display-0.png"));
}

TEST_F(DisplayProgramsTest, GiveWayToAPreparedTool) {
    fs::create_directories(m_unit + "/vrk/bin/apps");
    writeFile(m_unit + "/vrk/bin/apps/dmdt", "#!/bin/sh\necho prepared $*\n");
    fs::permissions(m_unit + "/vrk/bin/apps/dmdt", fs::perms::owner_all);
    fs::create_symlink("/nowhere/showimage", m_unit + "/vrk/bin/apps/showimage");
    EXPECT_EQ(outputOf("/vrk/bin/apps/dmdt dc 1 2; /vrk/bin/apps/showimage"), "prepared dc 1 2\n");
    EXPECT_EQ(m_error, "");
}

TEST_F(DisplayProgramsTest, LeaveAPreparedPicture) {
    fs::create_directories(m_unit + kStoredPictures);
    const std::string stored = kStoredPictures + std::string(headunit::kTestPictures[0].name) + ".gz";
    writeFile(m_unit + stored, "damaged");
    EXPECT_EQ(outputOf("cat " + stored + "; ls " + kStoredPictures + " | wc -l"), "damaged3\n");
}

TEST_F(DisplayProgramsTest, ChooseTheVariant) {
    const std::string show = "cat /mnt/app/img_ver.txt";
    EXPECT_EQ(outputOf(show), "HU-ECE-HIGH PAG 11.02.03\n");
    for (const std::string variant : {"G11", "G22", "G24", "G21", "PAG"})
        EXPECT_EQ(outputOf(show, {"--variant", variant}), "HU-ECE-HIGH " + variant + " 11.02.03\n");
    writeFile(m_unit + "/mnt/app/img_ver.txt", "a very long text of the user's own that names G24\n");
    EXPECT_EQ(outputOf(show), "a very long text of the user's own that names G24\n");
    EXPECT_EQ(outputOf(show, {"--variant", "G11"}), "HU-ECE-HIGH G11 11.02.03\n");
    EXPECT_EQ(outputOf(show), "HU-ECE-HIGH G11 11.02.03\n") << "the folder is kept";
}

TEST_F(DisplayProgramsTest, RunInAUnitWithTheDaemon) {
    Program program(runStandIn({"--unit", m_unit, "--variant", "G22"}));
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    EXPECT_EQ(contentOf(m_unit + "/mnt/app/img_ver.txt"), "HU-ECE-HIGH G22 11.02.03\n");
    stop(program);
}

TEST(BluetoothLibrary, IsFoundByTheLoaderInTheUnit) {
    Program program({HEADUNIT_PROGRAM, "exec", "--", BLUETOOTH_USER});
    EXPECT_EQ(program.wait(), 0) << program.error();
    EXPECT_EQ(program.output(), "04 0E 04 01 03 0C 00\n");
    Program without({HEADUNIT_PROGRAM, "exec", "--", "sh", "-c",
                     "rm /vrk/lib/mv8787bt.so; exec " + std::string(BLUETOOTH_USER)});
    EXPECT_EQ(without.wait(), 2);
    EXPECT_THAT(without.error(), HasSubstr("mv8787bt.so: cannot open shared object file"));
}

} // namespace
} // namespace headunit_test
