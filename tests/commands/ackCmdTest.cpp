#include "commands/ackCmd.h"

#include "support/CommandBench.h"

using ackCmdTest = CommandTest<ackCmd>;

TEST_F(ackCmdTest, AnyBinaryRequestIsAnsweredByNothing) {
    for (const Bytes& request :
         {Bytes{0x02, 0x06}, Bytes{0x03, 0x06, 0xFF}, Bytes{0x06, 0x06, 1, 2, 3, 4}})
        expectAnswer(request, Bytes{});
}

TEST_F(ackCmdTest, AnyLineIsAnsweredByNothing) {
    expectAnswer(Words{"ack"}, "");
    expectAnswer(Words{"ack", "1", "two", "%s"}, "");
}

TEST_F(ackCmdTest, ItsResponseIsCodeOne) {
    expectError(Response(command().process(static_cast<Bytes*>(nullptr))), 1, "");
    expectError(run(Tokens{}), 1, "");
}
