// Reading and writing ports over the ASCII protocol.
#include "commands/pReadCmd.h"
#include "support/PortFixture.h"

namespace {

using pReadCmdAsciiTest = CommandTest<pReadCmd, PortFixture>;

} // namespace

TEST_F(pReadCmdAsciiTest, ReadsEachPort) {
    for (const Port& port : kPorts) {
        SCOPED_TRACE(port.name);
        const std::string number = std::to_string(port.number);
        expectAnswer(Words{"port", "read", number},
                     string_format("port hex(%02X%02X)", port.number, port.type));
        setLevel(port, "1");
        expectAnswer(Words{"port", "read", number},
                     string_format("port hex(%02X%02X)", port.number, port.type | 0x04));
    }
}

TEST_F(pReadCmdAsciiTest, ReadsTheAttributesOfAllPorts) {
    expectAnswer(Words{"port", "getattributes"}, "port hex(00151331331311133111331303)");
    setAll("1");
    expectAnswer(Words{"port", "getattributes"}, "port hex(00155775775755577555775707)");
    expectAnswer(Words{"port", "getattributesofall", "and", "more"},
                 "port hex(00155775775755577555775707)");
}

TEST_F(pReadCmdAsciiTest, ThePortsNumberIsTakenModulo256) {
    const Rows<const char*, const char*> rows = {
        {"20", "hex(1403)"},     {"0x14", "hex(1403)"}, {"024", "hex(1403)"},
        {"276", "hex(1403)"},    {"-236", "hex(1403)"}, {"256", "hex(0003)"},
        {"1.5", "hex(0101)"},    {"abc", "hex(0003)"},  {"", "hex(0003)"},
        {"+2", "hex(0201)"},     {" 2", "hex(0201)"},   {"0x10000001", "hex(0101)"},
        {"2 and 3", "hex(0201)"}};
    for (const auto& [number, answer] : rows)
        expectResponse(Words{"port", "read", number}, answer);
}

TEST_F(pReadCmdAsciiTest, ANumberBeyondTheTableIsRefused) {
    const Rows<const char*, const char*> rows = {
        {"21", "Invalid Port: 21. Allowed port range is: [0,20]"},
        {"0x15", "Invalid Port: 21. Allowed port range is: [0,20]"},
        {"277", "Invalid Port: 21. Allowed port range is: [0,20]"},
        {"128", "Invalid Port: 128. Allowed port range is: [0,20]"},
        {"255", "Invalid Port: 255. Allowed port range is: [0,20]"},
        {"-1", "Invalid Port: 255. Allowed port range is: [0,20]"},
        {"2147483647", "Invalid Port: 255. Allowed port range is: [0,20]"},
        {"0x100000000", "Invalid Port: 255. Allowed port range is: [0,20]"}};
    for (const auto& [number, text] : rows) {
        expectRefused(Words{"port", "read", number}, kOutOfRange, text);
        expectRefused(Words{"port", "write", number, "1"}, kOutOfRange, text);
    }
}

TEST_F(pReadCmdAsciiTest, APortThatCannotBeReadIsReported) {
    relink(kPorts[4], kSomeFolder);
    expectRefused(Words{"port", "read", "4"}, kAccessFailed,
                  "Reading from Port 4 results in Error-Code 21");
    expectRefused(Words{"port", "getattributes"}, kAccessFailed,
                  "Failed to read Port 4: Is a directory, errorcode: 21");
    relink(kPorts[4], nullptr);
    expectRefused(Words{"port", "read", "4"}, kAccessFailed,
                  "Reading from Port 4 results in Error-Code 2");
}

TEST_F(pReadCmdAsciiTest, WritesOutputsAndNothingElse) {
    const std::string before = allLevels();
    for (const Port& port : kPorts) {
        SCOPED_TRACE(port.name);
        const std::string number = std::to_string(port.number);
        if (port.type != kOutput) {
            expectRefused(Words{"port", "write", number, "1"}, kNotAnOutput,
                          "Port " + number + " is not an Output Port");
            EXPECT_EQ(allLevels(), before);
            continue;
        }
        std::string expected = before;
        expected[port.number] = '1';
        expectAnswer(Words{"port", "write", number, "1"}, "port ok");
        EXPECT_EQ(allLevels(), expected);
        expectAnswer(Words{"port", "write", number, "0"}, "port ok");
        EXPECT_EQ(allLevels(), before);
    }
}

TEST_F(pReadCmdAsciiTest, OnlyTheValuesFirstCharacterCounts) {
    EXPECT_EQ(run(Words{"port", "write", "3", "1x"})->code, 0u);
    EXPECT_EQ(levelOf(kPorts[3]), "1");
    EXPECT_EQ(run(Words{"port", "write", "3", "01"})->code, 0u);
    EXPECT_EQ(levelOf(kPorts[3]), "0");
    setLevel(kPorts[3], "0\n");
    const Response response = run(Tokens{token("port"), token("write"), token("3"), {'1'}});
    EXPECT_EQ(response->code, 0u);
    EXPECT_EQ(response->message, "");
    EXPECT_EQ(levelOf(kPorts[3]), "1\n");
}

TEST_F(pReadCmdAsciiTest, AnUnknownValueIsRefusedOnceThePortIsOpen) {
    const std::size_t before = openDescriptors();
    for (const char* value : {"x", "2", " 1", "-1", "%s", "true"}) {
        expectRefused(Words{"port", "write", "3", value}, kWriteFailed,
                      std::string("Unknown value to write: ") + value[0]);
        EXPECT_EQ(levelOf(kPorts[3]), "0");
    }
    const std::string zeroByte("Unknown value to write: \0", 25);
    expectRefused(Words{"port", "write", "3", ""}, kWriteFailed, zeroByte);
    expectRefused(Tokens{token("port"), token("write"), token("3"), {}}, kWriteFailed, zeroByte);
    EXPECT_EQ(openDescriptors(), before);

    expectRefused(Words{"port", "write", "3", "x"}, kWriteFailed, "Unknown value to write: x");
    relink(kPorts[3], nullptr);
    expectRefused(Words{"port", "write", "3", "x"}, kNotAvailable,
                  "Port 3 does not exist on this Hardware");
    expectRefused(Words{"port", "write", "1", "x"}, kNotAnOutput, "Port 1 is not an Output Port");
    EXPECT_FALSE(exists(node(kPorts[3])));
}

TEST_F(pReadCmdAsciiTest, APortThatCannotBeWrittenIsReported) {
    relink(kPorts[20], kSomeFolder);
    expectRefused(Words{"port", "write", "20", "1"}, kAccessFailed,
                  "Open Port 20 results in Error 21: Is a directory");
    relink(kPorts[20], "/dev/full");
    expectRefused(Words{"port", "write", "20", "1"}, kWriteFailed,
                  "Writing to Port 20 results in Error 28: No space left on device");
}

TEST_F(pReadCmdAsciiTest, WhatIsNoRequestForItIsRefused) {
    expectRefused(RefusedLines{
        {{}, kGenericError, "Expected a subcommand!"},
        {{"port"}, kGenericError, "Expected a subcommand!"},
        {{"port", "read"}, kGenericError, "Expected a Port Number!"},
        {{"port", "readthem"}, kGenericError, "Expected a Port Number!"},
        {{"port", "read", "1", "2"}, kGenericError, "Expected a Port Number!"},
        {{"port", "write"}, kGenericError, "Invalid Command Length: Expected a Length of 4, get 2"},
        {{"port", "write", "3"}, kGenericError, "Invalid Command Length: Expected a Length of 4, get 3"},
        {{"port", "write", "3", "1", "1"},
         kGenericError,
         "Invalid Command Length: Expected a Length of 4, get 5"},
        {{"port", "write", "21"},
         kGenericError,
         "Invalid Command Length: Expected a Length of 4, get 3"},
        {{"port", ""}, kGenericError, "unknown subcommand ''"},
        {{"port", "rea", "1"}, kGenericError, "unknown subcommand 'rea'"},
        {{"port", "READ", "1"}, kGenericError, "unknown subcommand 'READ'"},
        {{"port", " read", "1"}, kGenericError, "unknown subcommand ' read'"},
        {{"port", "getattribute"}, kGenericError, "unknown subcommand 'getattribute'"},
        {{"port", "writ", "3", "1"}, kGenericError, "unknown subcommand 'writ'"},
        {{"port", "%s%n"}, kGenericError, "unknown subcommand '%s%n'"},
    });
    EXPECT_EQ(allLevels(), std::string(21, '0'));
    expectRefused(Words{"port", "set"}, kGenericError, "unknown subcommand 'set'");
}

TEST_F(pReadCmdAsciiTest, SubcommandsAreRecognisedByTheirBeginning) {
    expectResponse(Words{"port", "reading", "20"}, "hex(1403)");
    EXPECT_EQ(run(Words{"port", "writeto", "20", "1"})->code, 0u);
    EXPECT_EQ(levelOf(kPorts[20]), "1");
    // Without a zero byte.
    expectResponse(Tokens{token("port"), {'r', 'e', 'a', 'd'}, {'2', '0'}}, "hex(1407)");
    expectRefused(Tokens{token("port"), {'r', 'e', 'a'}, {'2', '0'}}, kGenericError,
                  "unknown subcommand 'rea'");
    expectRefused(Tokens{token("port"), {}}, kGenericError, "unknown subcommand ''");
}
