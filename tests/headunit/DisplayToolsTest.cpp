#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <sstream>

#include "displays/Screen.h"
#include "displays/ToolCall.h"
#include "pictures/BitmapFile.h"
#include "pictures/TestPictures.h"
#include "support/PngPicture.h"
#include "support/TestFiles.h"

namespace headunit {
namespace {

namespace fs = std::filesystem;
using namespace headunit_test;

using Words = std::vector<std::string>;

const Picture kBlack(kDisplayWidth, kDisplayHeight);

class DisplayToolsTest : public testing::Test {
protected:
    DisplayToolsTest() {
        writeFile(m_bars, encodeBitmap(colourBars()));
        writeFile(m_greys, encodeBitmap(greyBars(11)));
    }

    int run(DisplayTool tool, const Words& words) {
        std::ostringstream errors;
        const int status = runTool(m_files, tool, words, errors);
        m_said = errors.str();
        return status;
    }

    /// Calls that are to succeed without a word.
    void showimage(const Words& words) {
        EXPECT_EQ(run(DisplayTool::viewer, words), 0) << testing::PrintToString(words);
        EXPECT_EQ(m_said, "");
    }
    void dmdt(const Words& words) {
        EXPECT_EQ(run(DisplayTool::manager, words), 0) << testing::PrintToString(words);
        EXPECT_EQ(m_said, "");
    }

    Picture screen(int display) const {
        return decodePng(contentOf(m_folder / DisplayFiles::pictureName(display)));
    }

    std::string described(int display) const { return describe(shownOn(m_files.load(), display)); }

    TestFolder m_folder;
    std::string m_bars = m_folder / "the bars.bmp";
    std::string m_greys = m_folder / "greys.bmp";
    DisplayFiles m_files{m_folder.path()};
    std::string m_said;
};

TEST_F(DisplayToolsTest, DrawBothDisplaysWithTheFirstCall) {
    dmdt({"dc", "100", "-9999"});
    for (const int display : DisplayState::kDisplays) {
        EXPECT_TRUE(areEqual(screen(display), kBlack)) << display;
        EXPECT_EQ(described(display), "black");
    }
}

TEST_F(DisplayToolsTest, ShowAPictureOnOneDisplay) {
    showimage({});
    showimage({"h", "0"});
    showimage({"h", "4"});
    showimage({"si", m_bars});
    EXPECT_TRUE(areEqual(screen(4), kBlack)) << "not shown yet";
    showimage({"s", "4"});
    EXPECT_TRUE(areEqual(screen(4), colourBars()));
    EXPECT_TRUE(areEqual(screen(0), kBlack));
    EXPECT_EQ(described(4), "picture " + m_bars);
    EXPECT_EQ(described(0), "black");
    showimage({"si", m_greys});
    EXPECT_TRUE(areEqual(screen(4), colourBars())) << "what is selected is not what is shown";
    showimage({"s", "0"});
    EXPECT_TRUE(areEqual(screen(0), greyBars(11)));
    showimage({"h", "4"});
    EXPECT_TRUE(areEqual(screen(4), kBlack));
    EXPECT_TRUE(areEqual(screen(0), greyBars(11)));
}

TEST_F(DisplayToolsTest, ShowAFileAsItIsNow) {
    showimage({});
    showimage({"si", m_bars});
    showimage({"s", "0"});
    writeFile(m_bars, encodeBitmap(greyBars(33)));
    showimage({"s", "0"});
    EXPECT_TRUE(areEqual(screen(0), greyBars(33)));
}

TEST_F(DisplayToolsTest, RouteVideoInputs) {
    std::set<std::string> pictures;
    const std::pair<const char*, const char*> kSources[] = {
        {"-125", "input 3"}, {"47", "input 0"}, {"48", "input 2"}, {"-17", "source -17"}};
    for (const auto& [source, name] : kSources) {
        dmdt({"dc", "99", source});
        dmdt({"sc", "0", "99"});
        EXPECT_EQ(described(0), name);
        EXPECT_TRUE(areEqual(screen(0), screenOf({"", std::stoi(source)})));
        pictures.insert(contentOf(m_folder / "display-0.png"));
    }
    EXPECT_EQ(pictures.size(), 4u) << "each looks different";
    EXPECT_TRUE(areEqual(screen(4), kBlack));
    dmdt({"dc", "100", "-9999"});
    dmdt({"sc", "0", "100"});
    EXPECT_TRUE(areEqual(screen(0), kBlack));
}

TEST_F(DisplayToolsTest, ChangeWhatIsShownWithItsDefinition) {
    dmdt({"dc", "98", "47"});
    dmdt({"sc", "4", "98"});
    dmdt({"dc", "98", "48"});
    EXPECT_EQ(described(4), "input 2");
    EXPECT_TRUE(areEqual(screen(4), screenOf({"", 48})));
}

TEST_F(DisplayToolsTest, LayThePictureOverTheVideo) {
    dmdt({"dc", "99", "-125"});
    dmdt({"sc", "0", "99"});
    showimage({});
    showimage({"si", m_bars});
    showimage({"s", "0"});
    EXPECT_TRUE(areEqual(screen(0), colourBars()));
    dmdt({"sc", "0", "99"});
    EXPECT_TRUE(areEqual(screen(0), colourBars()));
    showimage({"q"});
    EXPECT_EQ(described(0), "input 3");
    EXPECT_TRUE(areEqual(screen(0), screenOf({"", -125})));
    EXPECT_FALSE(m_files.load().viewerRuns);
    EXPECT_EQ(run(DisplayTool::viewer, {"s", "0"}), 1);
    EXPECT_EQ(m_said, "showimage: the viewer does not run\n");
}

TEST_F(DisplayToolsTest, StartAViewerThatRunsAlready) {
    showimage({});
    showimage({"si", m_bars});
    showimage({});
    showimage({"s", "0"});
    EXPECT_TRUE(areEqual(screen(0), colourBars()));
}

struct RefusedCall {
    DisplayTool tool;
    Words words;
    std::string said;
};

TEST_F(DisplayToolsTest, RefuseWhatTheyDoNotKnow) {
    constexpr DisplayTool kViewer = DisplayTool::viewer;
    constexpr DisplayTool kManager = DisplayTool::manager;
    const std::string viewerUsage =
        "showimage: usage: showimage | showimage h LAYER | showimage si PICTURE | "
        "showimage s DISPLAY | showimage q\n";
    const std::string managerUsage = "dmdt: usage: dmdt dc ID VALUE | dmdt sc DISPLAY ID\n";
    const std::string none = m_folder / "none.bmp";
    const std::string text = m_folder / "text.bmp";
    writeFile(text, "no picture");
    const std::string small = m_folder / "small.bmp";
    writeFile(small, encodeBitmap(Picture(8, 8)));
    const std::string noPicture = " is no BMP file of 800x480 points with 24 bits each\n";
    showimage({});
    const DisplayState before = m_files.load();
    const RefusedCall kCalls[] = {
        {kViewer, {"x"}, viewerUsage},
        {kViewer, {""}, viewerUsage},
        {kViewer, {"h"}, viewerUsage},
        {kViewer, {"q", "0"}, viewerUsage},
        {kViewer, {"s", "0", "4"}, viewerUsage},
        {kViewer, {"h", "1"}, "showimage: there is no display 1, only 0 and 4\n"},
        {kViewer, {"s", "zero"}, "showimage: 'zero' is not a number\n"},
        {kViewer, {"s", ""}, "showimage: '' is not a number\n"},
        {kViewer, {"s", "0"}, "showimage: no picture is selected\n"},
        {kViewer, {"si", none}, "showimage: cannot open " + none + ": No such file or directory\n"},
        {kViewer, {"si", text}, "showimage: " + text + noPicture},
        {kViewer, {"si", small}, "showimage: " + small + noPicture},
        {kViewer, {"si", "a\nb"}, "showimage: a path with a line end cannot be selected\n"},
        {kManager, {}, managerUsage},
        {kManager, {"dc", "1"}, managerUsage},
        {kManager, {"xx", "1", "2"}, managerUsage},
        {kManager, {"dc", "1", "2", "3"}, managerUsage},
        {kManager, {"dc", "1", "2x"}, "dmdt: '2x' is not a number\n"},
        {kManager, {"dc", "99999999999", "2"}, "dmdt: '99999999999' is not a number\n"},
        {kManager, {"sc", "2", "99"}, "dmdt: there is no display 2, only 0 and 4\n"},
        {kManager, {"sc", "0", "99"}, "dmdt: content 99 is not defined\n"},
    };
    for (const RefusedCall& call : kCalls) {
        EXPECT_EQ(run(call.tool, call.words), 1) << testing::PrintToString(call.words);
        EXPECT_EQ(m_said, call.said);
        EXPECT_EQ(textOf(m_files.load()), textOf(before));
    }
}

TEST_F(DisplayToolsTest, LeaveEverythingWhenThePictureHasGone) {
    showimage({});
    showimage({"si", m_bars});
    fs::remove(m_bars);
    EXPECT_EQ(run(DisplayTool::viewer, {"s", "0"}), 1);
    EXPECT_EQ(m_said, "showimage: cannot open " + m_bars + ": No such file or directory\n");
    EXPECT_EQ(described(0), "black");
    EXPECT_TRUE(areEqual(screen(0), kBlack));
}

TEST_F(DisplayToolsTest, FailAsOftenAsTheyAreTold) {
    DisplayState state;
    state.failures[DisplayTool::manager] = 2;
    m_files.save(state);
    showimage({});
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(run(DisplayTool::manager, {"dc", "1", "2"}), 1);
        EXPECT_EQ(m_said, "dmdt: it was told to fail\n");
        EXPECT_TRUE(m_files.load().contents.empty());
    }
    dmdt({"dc", "1", "2"});
    EXPECT_EQ(m_files.load().contents.at(1), 2);
}

TEST_F(DisplayToolsTest, AreLateWhenTheyAreTold) {
    DisplayState state;
    state.late = 300;
    m_files.save(state);
    const auto start = std::chrono::steady_clock::now();
    showimage({});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
    EXPECT_TRUE(m_files.load().viewerRuns);
    EXPECT_EQ(m_files.load().late, 300);
}

TEST_F(DisplayToolsTest, LockWhatTheyChange) {
    const System::Descriptor held = m_files.lock();
    EXPECT_TRUE(held);
    EXPECT_FALSE(m_files.tryLock());
}

TEST_F(DisplayToolsTest, SayThatTheirFolderIsMissing) {
    std::ostringstream errors;
    EXPECT_EQ(runTool(DisplayFiles(m_folder / "none"), DisplayTool::viewer, {}, errors), 1);
    EXPECT_EQ(errors.str(), "showimage: cannot open " + (m_folder / "none/displays-lock") +
                                ": No such file or directory\n");
}

TEST(DisplayState, SurvivesItsText) {
    DisplayState state;
    state.viewerRuns = true;
    state.selected = "/tmp/a picture.bmp";
    state.pictures = {{0, "/tmp/b.bmp"}, {4, " c"}};
    state.contents = {{97, 48}, {99, -125}};
    state.switched = {{0, 99}};
    state.failures = {{DisplayTool::viewer, 3}, {DisplayTool::manager, 0}};
    state.late = 5000;
    const std::string text =
        "viewer running\nimage /tmp/a picture.bmp\nlayer 0 /tmp/b.bmp\nlayer 4  c\n"
        "content 97 48\ncontent 99 -125\ndisplay 0 99\nfail showimage 3\nlate 5000\n";
    EXPECT_EQ(textOf(state), text);
    EXPECT_EQ(textOf(displayStateOf(text)), text);
    EXPECT_EQ(textOf(DisplayState()), "");
    EXPECT_EQ(textOf(displayStateOf("nonsense\n\nlayer\ncontent 1\nfail it 3\nviewer\n")), "");
}

} // namespace
} // namespace headunit
