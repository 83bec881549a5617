#include "commands/ErrorCmd.h"

#include <gmock/gmock.h>

#include <memory>

#include "core/Handler.h"
#include "support/RecordingListener.h"

using ::testing::ElementsAre;

TEST(ErrorCmdTest, HasANameButNoId) {
    EXPECT_EQ(ErrorCmd::getInstance()->tavrin_getName(), 0);
    EXPECT_EQ(ErrorCmd::getInstance()->ascii_getName(), "Error");
    EXPECT_EQ(ErrorCmd::getInstance(), ErrorCmd::getInstance());
}

TEST(ErrorCmdTest, CannotBeRequested) {
    ErrorCmd::getInstance();
    Handler& handler = *Handler::getInstance();
    if (!handler.isValid())
        handler.start();
    RecordingListener listener;
    Bytes request = {0x04, 0x00, 1, 2};
    EXPECT_THAT(handler.handleCommand(&request, &listener), ElementsAre(8, 0, 1, 2, 1, 1, 0, 0));
    EXPECT_THAT(listener.frames, ElementsAre(debugFrame("No Handler for the Command 0x00")));
    EXPECT_EQ(handler.handleCommand(tokens({"Error"}), &listener), "Error Error 0x10");
    EXPECT_THAT(listener.lines, ElementsAre("Info \"No Handler for the Command Error\""));
}

TEST(ErrorCmdTest, WouldAnswerPlainSuccess) {
    Bytes request = {0x02, 0x00};
    std::vector<std::vector<char>> list = tokens({"Error"});
    const std::unique_ptr<ProcessResponse> binary(ErrorCmd::getInstance()->process(&request));
    const std::unique_ptr<ProcessResponse> ascii(ErrorCmd::getInstance()->process(list));
    for (const ProcessResponse* response : {binary.get(), ascii.get()}) {
        EXPECT_EQ(response->code, 0u);
        EXPECT_EQ(response->message, "asdf");
        EXPECT_EQ(response->protocol, 0);
    }
}

TEST(ErrorCmdTest, BuildsTheGenericError) {
    const Bytes request = {0x04, 'x', 1, 2};
    const std::unique_ptr<ProcessResponse> response(
        ErrorCmd::getInstance()->generateGenericTavrinError(&request, "100% %s"));
    EXPECT_EQ(response->code, 0x01010000u);
    EXPECT_EQ(response->message, "100% %s");
    ASSERT_EQ(response->protocol, 't');
    EXPECT_THAT(static_cast<ProcessResponseTavrin&>(*response).data,
                ElementsAre(8, 'x', 1, 2, 1, 1, 0, 0));
}
