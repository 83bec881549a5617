// Showing a picture: what reaches the two tools, in which order, and what a failing one leads to.
#include "support/GraphicsUnit.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const Calls kMakeBlack = {"dmdt|dc|100|-9999"};
const Calls kShowBlack = {"dmdt|sc|0|100"};
const Calls kStart = {"showimage"};
const Calls kQuit = {"showimage|q"};

/// The first picture of a process, and a later one.
const Calls kFirst = joined(joined(kMakeBlack, kShowBlack), joined(kStart, showing(0, 0)));
const Calls kLater = joined(kShowBlack, showing(0, 0));

/// So many steps of the first picture.
Calls firstSteps(std::ptrdiff_t count) {
    return {kFirst.begin(), kFirst.begin() + count};
}

constexpr char kEnvironment[] =
    "/root/lib-target:/vrk/lib:/armle/lib:/armle/lib/dll /etc/vrk/production\n";

using GCmdDisplayTest = GraphicsUnit;

} // namespace

TEST_F(GCmdDisplayTest, TheFirstPictureComesAfterABlackLayerAndTheStartOfTheViewer) {
    inFreshProcess([] {
        expectShown(0, 0, kFirst);
        EXPECT_EQ(environment(), kEnvironment);
        EXPECT_TRUE(read(unpackedPath(0)) == pictureContent(0));
    });
}

TEST_F(GCmdDisplayTest, TheCommandLinesAreTheseLetterForLetter) {
    inFreshProcess([] {
        expectShown(0, 2,
                    {"dmdt|dc|100|-9999", "dmdt|sc|0|100", "showimage", "showimage|h|0", "showimage|h|4",
                     "showimage|si|/tmp/greyscale_11bars_888_800x480.bmp", "showimage|s|0"});
    });
}

TEST_F(GCmdDisplayTest, ALaterPictureFindsTheViewerRunning) {
    inFreshProcess([] {
        graphics().displayTestImage(0, 0);
        calls();
        for (int time = 0; time < 2; ++time) {
            expectShown(0, 0, kLater);
        }
    });
}

TEST_F(GCmdDisplayTest, EachPictureHasItsFile) {
    inFreshProcess([] {
        graphics().displayTestImage(0, 0);
        calls();
        for (unsigned char index = 0; index < 3; ++index) {
            SCOPED_TRACE(int{index});
            expectShown(0, index, joined(kShowBlack, showing(index, 0)));
            EXPECT_TRUE(read(unpackedPath(index)) == pictureContent(index));
        }
    });
}

TEST_F(GCmdDisplayTest, TheSecondOutputHasNoBlackLayer) {
    inFreshProcess([] {
        expectShown(2, 1, joined(kStart, showing(1, 4)));
        EXPECT_EQ(environment(), kEnvironment);
        expectShown(2, 0, showing(0, 4));
        expectSuccess(graphics().displayTestImage(0, 0));
        EXPECT_EQ(calls(), joined(kMakeBlack, kLater)) << "the viewer serves both outputs";
    });
}

TEST_F(GCmdDisplayTest, AToolMayFailAtAnyStep) {
    const Calls restart = joined(kShowBlack, joined(kStart, showing(0, 0)));
    // What fails, the calls then, and those of the next request, when nothing fails any more.
    const Rows<std::string, Calls, Calls> rows = {
        {"dmdt|dc|100|-9999", kMakeBlack, restart},
        {"dmdt|sc|0|100", joined(kMakeBlack, kShowBlack), restart},
        {"showimage", joined(kMakeBlack, joined(kShowBlack, kStart)), kLater},
        {"showimage|h|0", joined(firstSteps(4), kQuit), restart},
        {"showimage|h|4", joined(firstSteps(5), kQuit), restart},
        {kFirst[5], joined(firstSteps(6), kQuit), restart},
        {"showimage|s|0", joined(kFirst, kQuit), restart},
    };
    for (const auto& [failing, first, second] : rows) {
        SCOPED_TRACE(failing);
        inFreshProcess([failing = failing, first = first, second = second] {
            failAt({failing});
            expectToolFailure(graphics().displayTestImage(0, 0));
            EXPECT_EQ(calls(), first);
            failAt({});
            expectShown(0, 0, second);
        });
    }
}

TEST_F(GCmdDisplayTest, AViewerThatRunsMayFailTooAndIsStartedAnew) {
    inFreshProcess([] {
        startViewer();
        failAt({"showimage|s|4"});
        expectToolFailure(graphics().displayTestImage(2, 0));
        EXPECT_EQ(calls(), joined(showing(0, 4), kQuit));
        failAt({});
        expectShown(2, 0, joined(kStart, showing(0, 4)));
    });
}

TEST_F(GCmdDisplayTest, AnEndThatFailsTooChangesNothing) {
    inFreshProcess([] {
        remove(packedPath(0));
        failAt({"showimage|q"});
        expectError(graphics().displayTestImage(2, 0), kGenericError, "path to test image not found");
        EXPECT_THAT(calls(), ElementsAre("showimage", "showimage|h|0", "showimage|h|4", "showimage|q"));
        expectShown(2, 1, joined(kStart, showing(1, 4)));
    });
}

TEST_F(GCmdDisplayTest, APictureThatIsMissingEndsTheViewer) {
    inFreshProcess([] {
        remove(packedPath(0));
        expectError(graphics().displayTestImage(0, 0), kGenericError, "path to test image not found");
        EXPECT_EQ(calls(), joined(firstSteps(5), kQuit));
        EXPECT_FALSE(exists(unpackedPath(0)));
        pack(packedPath(0), pictureContent(0));
        expectShown(0, 0, joined(kShowBlack, joined(kStart, showing(0, 0))));
    });
}

TEST_F(GCmdDisplayTest, BothProtocolsShowPictures) {
    inFreshProcess([this] {
        graphics();
        EXPECT_EQ(m_frontEnd.send(Bytes{0x05, 'G', 0xA0, 2, 1}), (Bytes{8, 'G', 0xA0, 2, 0, 0, 0, 0}));
        EXPECT_THAT(m_frontEnd.frames, IsEmpty());
        EXPECT_EQ(calls(), joined(kStart, showing(1, 4)));
        for (const Calls& words :
             {Calls{"graphic", "display", "2", "1"},
              Calls{"graphic", "displayed", "0x2", "0x01", "more"},
              Calls{"graphic", "display", "258", "257"}, Calls{"graphic", "display", "-254", "-255"}}) {
            SCOPED_TRACE(::testing::PrintToString(words));
            EXPECT_EQ(m_frontEnd.sendWords(words), "graphic ok");
            EXPECT_THAT(m_frontEnd.lines, IsEmpty());
            EXPECT_EQ(calls(), showing(1, 4));
        }
    });
}

TEST_F(GCmdDisplayTest, BothProtocolsPassAFailureOn) {
    graphics();
    remove(packedPath(0));
    constexpr char kNotFound[] = "path to test image not found";
    expectRefused(graphics(), m_frontEnd, Bytes{0x05, 'G', 0xA0, 2, 0}, kGenericError, kNotFound);
    expectRefused(graphics(), m_frontEnd, tokens({"graphic", "display", "2", "0"}), kGenericError,
                  kNotFound);
}

TEST_F(GCmdDisplayTest, TheSameResponseComesInEitherProtocol) {
    const unsigned int before = ProcessResponse::m_counter;
    expectSuccess(*runRequest(graphics(), Bytes{0x05, 'G', 0xA0, 2, 0}), Bytes{});
    expectSuccess(*runRequest(graphics(), tokens({"graphic", "display", "2", "0"})), "ok");
    EXPECT_EQ(ProcessResponse::m_counter, before);
}
