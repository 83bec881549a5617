// Reading ports over the binary protocol.
#include "commands/pReadCmd.h"

#include <sys/syscall.h>

#include <cerrno>

#include "support/PortFixture.h"
#include "support/RefusedCalls.h"

using ::testing::ElementsAre;

namespace {

class pReadCmdBinaryTest : public CommandTest<pReadCmd, PortFixture> {
protected:
    static inline const Bytes kReadConfig = {4, 'p', 0xE3, 0};

    static Bytes reading(unsigned char port) { return {5, 'p', 0xE3, 1, port}; }
};

Bytes configOf(const Bytes& pairs) {
    return joined({0x00, 0x15}, pairs);
}

const Bytes kAllLow = {0x13, 0x31, 0x33, 0x13, 0x11, 0x13, 0x31, 0x11, 0x33, 0x13, 0x03};
const Bytes kAllHigh = {0x57, 0x75, 0x77, 0x57, 0x55, 0x57, 0x75, 0x55, 0x77, 0x57, 0x07};

const OddNode kUnreadable[] = {
    {nullptr, 2, "No such file or directory"},
    {kNothing, 2, "No such file or directory"},
    {kSomeFolder, 21, "Is a directory"},
    {kLinkToItself, 40, "Too many levels of symbolic links"},
    {kBehindAFile, 20, "Not a directory"},
    {kSocket, 6, "No such device or address"},
    {"/proc/self/mem", 5, "Input/output error"}, // opens, but nothing is at its beginning
};

} // namespace

TEST_F(pReadCmdBinaryTest, ReadsEachPort) {
    for (const Port& port : kPorts) {
        SCOPED_TRACE(port.name);
        expectDone(reading(port.number), {port.number, port.type});
        setLevel(port, "1");
        const unsigned char whenHigh = port.type | 0x04;
        expectDone(reading(port.number), {port.number, whenHigh});
        EXPECT_EQ(levelOf(port), "1");
        setLevel(port, "0");
    }
}

TEST_F(pReadCmdBinaryTest, OnlyTheNodesFirstCharacterCounts) {
    const Rows<std::string, unsigned char> rows = {
        {"", 1},   {"0", 1},  {"1", 5},    {"1\n", 5},
        {"10", 5}, {"x", 1},  {"\n1", 1},  {std::string("\0001", 2), 1},
        {"01", 1}, {" 1", 1}, {"\x31", 5}, {"\xB1", 1}};
    for (const auto& [content, attributes] : rows) {
        SCOPED_TRACE(content);
        setLevel(kPorts[7], content);
        expectResponse(reading(7), {7, attributes});
    }
}

TEST_F(pReadCmdBinaryTest, ReadsTheAttributesOfAllPorts) {
    expectDone(kReadConfig, configOf(kAllLow));
    setAll("1");
    expectDone(kReadConfig, configOf(kAllHigh));
}

TEST_F(pReadCmdBinaryTest, EachPortHasItsPlaceAmongTheAttributes) {
    for (const Port& port : kPorts) {
        SCOPED_TRACE(port.name);
        setLevel(port, "1");
        Bytes pairs = kAllLow;
        pairs[port.number / 2] |= port.number % 2 == 0 ? 0x04 : 0x40;
        expectResponse(kReadConfig, configOf(pairs));
        setLevel(port, "0");
    }
}

TEST_F(pReadCmdBinaryTest, APortThatCannotBeReadIsReported) {
    const std::size_t before = openDescriptors();
    for (const OddNode& node : kUnreadable) {
        for (const unsigned char number : Bytes{0, 1, 20}) {
            SCOPED_TRACE(std::to_string(number) + " " + (node.target == nullptr ? "-" : node.target));
            const std::string port = std::to_string(number);
            const std::string code = std::to_string(node.error);
            relink(kPorts[number], node.target);
            expectRefused(reading(number), kAccessFailed,
                          "Reading from Port " + port + " results in Error-Code " + code);
            expectRefused(kReadConfig, kAccessFailed,
                          "Failed to read Port " + port + ": " + node.reason + ", errorcode: " + code);
            relink(kPorts[number], nullptr);
            setLevel(kPorts[number], "0");
        }
    }
    EXPECT_EQ(openDescriptors(), before);
    expectResponse(kReadConfig, configOf(kAllLow));
}

TEST_F(pReadCmdBinaryTest, APortThatMustNotBeOpenedIsReported) {
    inFreshProcess([] {
        setLevel(kPorts[3], "1");
        refuseSystemCalls({SYS_openat}, EACCES);
        expectError(run(reading(3)), kAccessFailed, "Reading from Port 3 results in Error-Code 13");
        expectError(run(kReadConfig), kAccessFailed,
                    "Failed to read Port 0: Permission denied, errorcode: 13");
    });
}

TEST_F(pReadCmdBinaryTest, TheFirstUnreadablePortEndsTheList) {
    relink(kPorts[5], nullptr);
    relink(kPorts[2], kSomeFolder);
    expectRefused(kReadConfig, kAccessFailed, "Failed to read Port 2: Is a directory, errorcode: 21");
}

TEST_F(pReadCmdBinaryTest, WithoutTheFolderThereAreNoPorts) {
    remove(kFolder);
    expectRefused(reading(20), kAccessFailed, "Reading from Port 20 results in Error-Code 2");
    expectRefused(kReadConfig, kAccessFailed,
                  "Failed to read Port 0: No such file or directory, errorcode: 2");
}

TEST_F(pReadCmdBinaryTest, WhatIsNoRequestForItIsRefused) {
    const char* const noCommand = "Command is not supported";
    expectRefused(RefusedFrames{
        {{2, 'p'}, kGenericError, noCommand},
        {{3, 'p', 0xE3}, kGenericError, noCommand},
        {{4, 'p', 0xE2, 0}, kGenericError, noCommand},
        {{5, 'p', 0x00, 1, 0}, kGenericError, noCommand},
        {{4, 'p', 0xE3, 2}, kGenericError, noCommand},
        {{5, 'p', 0xE3, 0xFF, 0}, kGenericError, noCommand},
        {{5, 'p', 0xE3, 0, 0}, kGenericError, "Invalid Command Length: Expected a Length of 4, get 5"},
        {{4, 'p', 0xE3, 1}, kGenericError, "Expected at a Command Length of 5, received 4"},
        {{6, 'p', 0xE3, 1, 3, 4}, kGenericError, "Expected at a Command Length of 5, received 6"},
        {{6, 'p', 0xE3, 1, 21, 4}, kGenericError, "Expected at a Command Length of 5, received 6"},
        {{5, 'p', 0xE3, 1, 21}, kOutOfRange, "Invalid Port: 21. Allowed port range is: [0,20]"},
        {{5, 'p', 0xE3, 1, 128}, kOutOfRange, "Invalid Port: 128. Allowed port range is: [0,20]"},
        {{5, 'p', 0xE3, 1, 255}, kOutOfRange, "Invalid Port: 255. Allowed port range is: [0,20]"},
    });
    expectDone(reading(0), {0, 3}); // the next one is answered
    Bytes longest = {255, 'p', 0xE3, 0};
    longest.resize(255);
    expectRefused(longest, kGenericError, "Invalid Command Length: Expected a Length of 4, get 255");
}

TEST_F(pReadCmdBinaryTest, AValueIsReadByItself) {
    char value = 'z';
    EXPECT_EQ(command().readPortValue(8, value), 0u);
    EXPECT_EQ(value, '0');
    setLevel(kPorts[8], "1");
    EXPECT_EQ(command().readPortValue(8, value), 0u);
    EXPECT_EQ(value, '1');
    relink(kPorts[8], nullptr);
    EXPECT_EQ(command().readPortValue(8, value), 2u);
    EXPECT_EQ(value, '0');
}

TEST_F(pReadCmdBinaryTest, WhatIsReadIsAddedToTheData) {
    Bytes data = {0xAA};
    setLevel(kPorts[6], "1");
    EXPECT_EQ(Response(command().readPort(6, &data))->code, 0u);
    EXPECT_EQ(Response(command().readPort(7, &data))->code, 0u);
    EXPECT_THAT(data, ElementsAre(0xAA, 6, 0x07, 7, 0x01));
    relink(kPorts[6], nullptr);
    EXPECT_EQ(Response(command().readPort(6, &data))->code, kAccessFailed);
    EXPECT_THAT(data, ElementsAre(0xAA, 6, 0x07, 7, 0x01));
}

TEST_F(pReadCmdBinaryTest, PacksANibbleIntoEitherHalf) {
    using Info = AbstractPCmd::PortInfo;
    const Rows<Info::Type, unsigned char, char, bool, unsigned char> rows = {
        {Info::None, 0x00, '0', true, 0x00},   {Info::None, 0xFF, '0', true, 0x00},
        {Info::Input, 0xFF, '0', true, 0x01},  {Info::Output, 0xFF, '1', true, 0x07},
        {Info::Input, 0x00, 'x', true, 0x01},  {Info::None, 0x00, '1', true, 0x04},
        {Info::Input, 0x07, '0', false, 0x17}, {Info::Output, 0x03, '1', false, 0x73},
        {Info::None, 0x85, '0', false, 0x85},  {Info::Input, 0x00, '\1', false, 0x10},
    };
    for (const auto& [type, before, value, low, after] : rows) {
        SCOPED_TRACE(::testing::PrintToString(static_cast<int>(after)));
        unsigned char byte = before;
        command().setAttributes(byte, type, value, low);
        EXPECT_EQ(byte, after);
    }
}
