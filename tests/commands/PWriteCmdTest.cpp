#include "commands/PWriteCmd.h"

#include <sys/syscall.h>

#include <cerrno>

#include "support/PortFixture.h"
#include "support/RefusedCalls.h"

using ::testing::ElementsAre;

namespace {

class PWriteCmdTest : public CommandTest<PWriteCmd, PortFixture> {
protected:
    static Bytes writing(unsigned char port, unsigned char value) {
        return {6, 'P', 0xE3, 1, port, value};
    }
    static Response writePort(unsigned char port, unsigned char value) {
        return run(writing(port, value));
    }
};

} // namespace

TEST_F(PWriteCmdTest, WritesOutputsAndNothingElse) {
    const std::string before = allLevels();
    for (const Port& port : kPorts) {
        SCOPED_TRACE(port.name);
        const Bytes high = send({6, 'P', 0xE3, 1, port.number, 0x04});
        if (port.type != kOutput) {
            expectRefused(writing(port.number, 0x04), kNotAnOutput,
                          "Port " + std::to_string(port.number) + " is not an Output Port");
            EXPECT_EQ(allLevels(), before);
            continue;
        }
        std::string expected = before;
        expected[port.number] = '1';
        EXPECT_THAT(high, ElementsAre(8, 'P', 0xE3, 1, 0, 0, 0, 0));
        EXPECT_EQ(allLevels(), expected);
        expectDone(writing(port.number, 0x00));
        EXPECT_EQ(allLevels(), before);
    }
}

TEST_F(PWriteCmdTest, OnlyBitTwoOfTheValueCounts) {
    for (int value = 0; value <= 0xFF; ++value) {
        SCOPED_TRACE(value);
        setLevel(kPorts[18], "z");
        const Response response = writePort(18, static_cast<unsigned char>(value));
        EXPECT_EQ(response->code, 0u);
        EXPECT_EQ(response->message, "");
        EXPECT_EQ(response->protocol, 't');
        EXPECT_EQ(levelOf(kPorts[18]), (value / 4) % 2 == 1 ? "1" : "0");
    }
}

TEST_F(PWriteCmdTest, WritesTheFirstCharacterAndLeavesTheRest) {
    setLevel(kPorts[10], "0\nrest");
    EXPECT_EQ(writePort(10, 0x04)->code, 0u);
    EXPECT_EQ(levelOf(kPorts[10]), "1\nrest");
    setLevel(kPorts[10], "");
    EXPECT_EQ(writePort(10, 0x00)->code, 0u);
    EXPECT_EQ(levelOf(kPorts[10]), "0");
}

TEST_F(PWriteCmdTest, AnInputIsNotEvenOpened) {
    relink(kPorts[1], nullptr);
    expectRefused(writing(1, 0x04), kNotAnOutput, "Port 1 is not an Output Port");
    relink(kPorts[1], kSomeFolder);
    expectRefused(writing(1, 0x04), kNotAnOutput, "Port 1 is not an Output Port");
}

TEST_F(PWriteCmdTest, APortThatCannotBeOpenedIsReported) {
    const OddNode nodes[] = {
        {kSomeFolder, 21, "Is a directory"},
        {kLinkToItself, 40, "Too many levels of symbolic links"},
        {kBehindAFile, 20, "Not a directory"},
        {kSocket, 6, "No such device or address"},
    };
    const std::size_t before = openDescriptors();
    for (const OddNode& odd : nodes) {
        SCOPED_TRACE(odd.target);
        relink(kPorts[6], odd.target);
        expectRefused(writing(6, 0x04), kAccessFailed,
                      "Open Port 6 results in Error " + std::to_string(odd.error) + ": " + odd.reason);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(PWriteCmdTest, APortThatMustNotBeOpenedIsReported) {
    inFreshProcess([] {
        refuseSystemCalls({SYS_openat}, EACCES);
        expectError(writePort(3, 0x04), kAccessFailed,
                    "Open Port 3 results in Error 13: Permission denied");
    });
}

TEST_F(PWriteCmdTest, AnAbsentPortIsNotMade) {
    relink(kPorts[16], nullptr);
    expectRefused(writing(16, 0x04), kNotAvailable, "Port 16 does not exist on this Hardware");
    EXPECT_FALSE(exists(node(kPorts[16])));
    relink(kPorts[16], kNothing);
    expectRefused(writing(16, 0x04), kNotAvailable, "Port 16 does not exist on this Hardware");
    EXPECT_FALSE(exists(kNothing));
    remove(kFolder);
    expectRefused(writing(0, 0x04), kNotAvailable, "Port 0 does not exist on this Hardware");
}

TEST_F(PWriteCmdTest, AFailedWriteIsReported) {
    const std::size_t before = openDescriptors();
    relink(kPorts[13], "/dev/full");
    expectRefused(writing(13, 0x04), kWriteFailed,
                  "Writing to Port 13 results in Error 28: No space left on device");
    EXPECT_EQ(openDescriptors(), before);
    relink(kPorts[13], nullptr);
    setLevel(kPorts[13], "0");
    EXPECT_EQ(writePort(13, 0x04)->code, 0u);
    EXPECT_EQ(levelOf(kPorts[13]), "1");
}

TEST_F(PWriteCmdTest, ANodeThatTakesNothingIsReported) {
    inFreshProcess([] {
        refuseWritesBelow(2, 0);
        expectError(writePort(3, 0x04), kWriteFailed,
                    "Writing to Port 3 results in Error 5: Input/output error");
    });
}

TEST_F(PWriteCmdTest, WhatIsNoRequestForItIsRefused) {
    const char* const noCommand = "Command not supported";
    expectRefused(RefusedFrames{
        {{2, 'P'}, kGenericError, noCommand},
        {{3, 'P', 0xE3}, kGenericError, noCommand},
        {{4, 'P', 0xE3, 0}, kGenericError, noCommand},
        {{6, 'P', 0xE3, 2, 3, 4}, kGenericError, noCommand},
        {{6, 'P', 0xE2, 1, 3, 4}, kGenericError, noCommand},
        {{4, 'P', 0xE3, 1}, kGenericError, "Invalid Command Length: Expected a Length of 6, get 4"},
        {{5, 'P', 0xE3, 1, 3}, kGenericError, "Invalid Command Length: Expected a Length of 6, get 5"},
        {{7, 'P', 0xE3, 1, 3, 4, 4},
         kGenericError,
         "Invalid Command Length: Expected a Length of 6, get 7"},
        {{6, 'P', 0xE3, 1, 21, 4}, kOutOfRange, "Invalid Port: 21. Allowed port range is: [0,20]"},
        {{6, 'P', 0xE3, 1, 255, 4}, kOutOfRange, "Invalid Port: 255. Allowed port range is: [0,20]"},
    });
    EXPECT_EQ(allLevels(), std::string(21, '0'));
}

TEST_F(PWriteCmdTest, LinesOfTextWriteThroughTheOtherCommand) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{}, {"port"}, {"port", "write", "3", "1"}}) {
        SCOPED_TRACE(words.size());
        expectError(run(words), kGenericError, "Implemented in port command");
    }
    EXPECT_EQ(levelOf(kPorts[3]), "0");
    EXPECT_EQ(send(Words{"", "write", "3", "1"}), "Error Error 0x10")
        << "it has no name to be called by";
}
