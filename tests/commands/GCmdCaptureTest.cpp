// Routing a video input: what reaches the two tools, in which order, and what a failing one leads to.
#include "support/ErrorOutput.h"
#include "support/GraphicsUnit.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr unsigned int kInvalidOutput = 0x49000002;
constexpr unsigned int kInvalidInput = 0x49000008;

/// How an input's layer is made and shown.
struct Input {
    unsigned char number;
    const char* make;
    const char* show;
    bool isRetried;
};

constexpr Input kInputs[] = {
    {3, "dmdt|dc|99|-125", "dmdt|sc|0|99", false},
    {0, "dmdt|dc|98|47", "dmdt|sc|0|98", false},
    {2, "dmdt|dc|97|48", "dmdt|sc|0|97", true},
};

class GCmdCaptureTest : public GraphicsUnit {
protected:
    /// That the first output gets an input, by these calls of the tools.
    static void expectCapture(unsigned char input, const Calls& made) {
        expectSuccess(graphics().captureFrame(input, 0));
        EXPECT_EQ(calls(), made);
    }
    /// That the last of these calls fails.
    static void expectFailedCapture(unsigned char input, const Calls& made) {
        expectToolFailure(graphics().captureFrame(input, 0));
        EXPECT_EQ(calls(), made);
    }
    /// What is told when an input goes to this output.
    static std::string told(unsigned char output) {
        graphics();
        return errorOutputOf([&] { expectSuccess(graphics().captureFrame(0, output)); });
    }
};

} // namespace

TEST_F(GCmdCaptureTest, EachInputHasALayerThatIsMadeOnce) {
    inFreshProcess([] {
        for (const Input& input : kInputs) {
            SCOPED_TRACE(int{input.number});
            expectCapture(input.number, {input.make, input.show});
            EXPECT_EQ(environment(),
                      "/root/lib-target:/vrk/lib:/armle/lib:/armle/lib/dll /etc/vrk/production\n");
        }
        for (const Input& input : kInputs) {
            SCOPED_TRACE(int{input.number});
            expectCapture(input.number, {input.show});
        }
    });
}

TEST_F(GCmdCaptureTest, ALayerThatCouldNotBeMadeIsTriedAgainForOneInputOnly) {
    for (const Input& input : kInputs) {
        SCOPED_TRACE(int{input.number});
        inFreshProcess([&input] {
            failAt({input.make});
            expectFailedCapture(input.number, {input.make});
            failAt({});
            expectCapture(input.number,
                          input.isRetried ? Calls{input.make, input.show} : Calls{input.show});
            expectCapture(input.number, {input.show});
        });
    }
}

TEST_F(GCmdCaptureTest, ALayerThatKeepsFailingIsTriedEachTimeForOneInputOnly) {
    for (const Input& input : kInputs) {
        SCOPED_TRACE(int{input.number});
        inFreshProcess([&input] {
            failAt({input.make});
            expectFailedCapture(input.number, {input.make});
            if (input.isRetried)
                expectFailedCapture(input.number, {input.make});
            else
                expectCapture(input.number, {input.show});
        });
    }
}

TEST_F(GCmdCaptureTest, ALayerThatCannotBeShownIsNotMadeAgain) {
    for (const Input& input : kInputs) {
        SCOPED_TRACE(int{input.number});
        inFreshProcess([&input] {
            failAt({input.show});
            expectFailedCapture(input.number, {input.make, input.show});
            expectFailedCapture(input.number, {input.show});
            failAt({});
            expectCapture(input.number, {input.show});
        });
    }
}

TEST_F(GCmdCaptureTest, TheSecondOutputWarnsAndTakesTheFirstDisplay) {
    inFreshProcess([] {
        EXPECT_EQ(told(1),
                  "Prod.testserver: GCmd: Failure in callig captureFrame function, invalid output "
                  "channel: 1\n"
                  "Prod.testserver: GCmd: Choosing LVDS0 as default output channel\n");
        EXPECT_THAT(calls(), ElementsAre("dmdt|dc|98|47", "dmdt|sc|0|98"));
    });
}

TEST_F(GCmdCaptureTest, TheFirstOutputDoesNotWarn) {
    inFreshProcess([] { EXPECT_EQ(told(0), ""); });
}

TEST_F(GCmdCaptureTest, AViewerThatRunsIsEndedOnce) {
    inFreshProcess([] {
        startViewer();
        expectCapture(3, {"showimage|q", "dmdt|dc|99|-125", "dmdt|sc|0|99"});
        expectCapture(3, {"dmdt|sc|0|99"});
        expectShown(2, 0, joined({"showimage"}, showing(0, 4)));
    });
}

TEST_F(GCmdCaptureTest, ARefusedRequestEndsTheViewerAllTheSame) {
    const Rows<unsigned char, unsigned char, unsigned int, const char*> rows = {
        {3, 2, kInvalidOutput, "The output channel : 2 is invalid for video"},
        {1, 0, kInvalidInput, "The input channel : 1 is invalid for video"}};
    for (const auto& [input, output, code, text] : rows) {
        SCOPED_TRACE(text);
        inFreshProcess([input = input, output = output, code = code, text = text] {
            startViewer();
            expectError(graphics().captureFrame(input, output), code, text);
            EXPECT_THAT(calls(), ElementsAre("showimage|q"));
            expectError(graphics().captureFrame(input, output), code, text);
            EXPECT_THAT(calls(), IsEmpty());
        });
    }
}

TEST_F(GCmdCaptureTest, AViewerThatCannotBeEndedIsNoHindrance) {
    inFreshProcess([] {
        startViewer();
        failAt({"showimage|q"});
        expectCapture(0, {"showimage|q", "dmdt|dc|98|47", "dmdt|sc|0|98"});
        expectCapture(0, {"dmdt|sc|0|98"});
    });
}

TEST_F(GCmdCaptureTest, AViewerWhoseStartFailedIsEnded) {
    inFreshProcess([] {
        failAt({"showimage"});
        expectToolFailure(graphics().displayTestImage(2, 0));
        EXPECT_THAT(calls(), ElementsAre("showimage"));
        expectCapture(2, {"showimage|q", "dmdt|dc|97|48", "dmdt|sc|0|97"});
    });
}

TEST_F(GCmdCaptureTest, TheBlackLayerIsNoneOfTheInputs) {
    inFreshProcess([] {
        expectSuccess(graphics().switchToBlack(0));
        EXPECT_THAT(calls(), ElementsAre("dmdt|dc|100|-9999", "dmdt|sc|0|100"));
        expectSuccess(graphics().switchToBlack(1));
        EXPECT_THAT(calls(), ElementsAre("dmdt|sc|1|100"));
        expectSuccess(graphics().switchToBlack(4));
        EXPECT_THAT(calls(), IsEmpty());
        expectCapture(0, {"dmdt|dc|98|47", "dmdt|sc|0|98"});
    });
}

TEST_F(GCmdCaptureTest, AToolHasFiveSeconds) {
    inFreshProcess([] {
        hangAt("dmdt|dc|97|48");
        Calls made;
        // A machine that is busy may not have started it by then; it is started anew each time.
        for (int times = 0; times < 5 && made.empty(); ++times) {
            expectError(graphics().captureFrame(2, 0), kGenericError,
                        "Process /vrk/bin/apps/dmdt dc 97 48 was killed after timeout\nstdout+err:\n\n");
            made = calls();
        }
        EXPECT_THAT(made, ElementsAre("dmdt|dc|97|48"));
    });
}

TEST_F(GCmdCaptureTest, AToolThatEndsWithAnErrorOrIsMissingIsNoFailure) {
    inFreshProcess([] {
        write("/vrk/bin/apps/dmdt", "#!/bin/sh\necho no display\nexit 1\n");
        expectSuccess(graphics().captureFrame(3, 0));
        EXPECT_EQ(read(kCaptureFile), "no display\n");
        remove("/vrk/bin/apps/dmdt");
        expectSuccess(graphics().captureFrame(3, 0));
        EXPECT_THAT(read(kCaptureFile), ::testing::HasSubstr("not found"));
    });
}

TEST_F(GCmdCaptureTest, BothProtocolsRouteInputs) {
    inFreshProcess([this] {
        graphics();
        EXPECT_EQ(m_frontEnd.send(Bytes{0x06, 'G', 0xA1, 0x77, 3, 0}),
                  (Bytes{8, 'G', 0xA1, 0x77, 0, 0, 0, 0}));
        EXPECT_THAT(m_frontEnd.frames, IsEmpty());
        EXPECT_THAT(calls(), ElementsAre("dmdt|dc|99|-125", "dmdt|sc|0|99"));
        for (const Calls& words : {Calls{"graphic", "capture", "3", "0"},
                                   Calls{"graphic", "captured", "0x3", "nothing", "more"},
                                   Calls{"graphic", "capture", "259", "256"}}) {
            SCOPED_TRACE(::testing::PrintToString(words));
            EXPECT_EQ(m_frontEnd.sendWords(words), "graphic ok");
            EXPECT_THAT(m_frontEnd.lines, IsEmpty());
            EXPECT_THAT(calls(), ElementsAre("dmdt|sc|0|99"));
        }
    });
}

TEST_F(GCmdCaptureTest, TheSameResponseComesInEitherProtocol) {
    const unsigned int before = ProcessResponse::m_counter;
    expectSuccess(*runRequest(graphics(), Bytes{0x06, 'G', 0xA1, 0, 0, 0}), Bytes{});
    expectSuccess(*runRequest(graphics(), tokens({"graphic", "capture", "0", "0"})), "ok");
    EXPECT_EQ(ProcessResponse::m_counter, before);
}
