#include "commands/ErrorCmd.h"

#include "support/CommandBench.h"

using ErrorCmdTest = CommandTest<ErrorCmd>;

TEST_F(ErrorCmdTest, HasANameButNoId) {
    EXPECT_EQ(command().tavrin_getName(), 0);
    EXPECT_EQ(command().ascii_getName(), "Error");
    EXPECT_EQ(ErrorCmd::getInstance(), ErrorCmd::getInstance());
}

TEST_F(ErrorCmdTest, CannotBeRequested) {
    expectErrorSent(m_frontEnd, {0x04, 0x00, 1, 2}, kGenericError, "No Handler for the Command 0x00");
    EXPECT_EQ(send(Words{"Error"}), "Error Error 0x10");
    EXPECT_THAT(m_frontEnd.lines, ::testing::ElementsAre(infoLine("No Handler for the Command Error")));
}

TEST_F(ErrorCmdTest, WouldAnswerPlainSuccess) {
    Bytes request = {0x02, 0x00};
    expectError(Response(command().process(&request)), 0, "asdf");
    expectError(run(Words{"Error"}), 0, "asdf");
}

TEST_F(ErrorCmdTest, BuildsTheGenericError) {
    const Bytes request = {0x04, 'x', 1, 2};
    const Response response(command().generateGenericTavrinError(&request, "100% %s"));
    expectError(response, kGenericError, "100% %s", 't');
    EXPECT_EQ(frameOf(*response), (Bytes{8, 'x', 1, 2, 1, 1, 0, 0}));
}
