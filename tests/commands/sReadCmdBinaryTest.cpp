// The binary status. What it remembers lasts as long
// as the process, so each sequence has one of its own.
#include "commands/sReadCmd.h"

#include <stdexcept>

#include "core/BuildStamp.h"
#include "support/UnitFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr char kRevisionFile[] = "/dev/nvsku/rev";

unsigned char packed(int number) {
    return static_cast<unsigned char>(number / 10 * 16 + number % 10);
}

Bytes statusFrame(unsigned char sentBefore, unsigned int revision) {
    const std::string stamp = getDateTimeString(); // yyyy/mm/dd hh:mm:ss
    const auto part = [&stamp](std::size_t at) { return packed(std::stoi(stamp.substr(at, 2))); };
    Bytes frame = {24, 's', 0x2C, sentBefore, 0, 0, 0, 0, part(8), part(5), part(2), part(11), part(14)};
    for (const unsigned int number : {0xA0u, 0x24u, revision >> 8, revision, 4u})
        frame.push_back(static_cast<unsigned char>(number));
    frame.resize(24);
    return frame;
}

class sReadCmdBinaryTest : public CommandTest<sReadCmd, UnitFixture> {
protected:
    static Response status() { return run({0x02, 's'}); }
    static Response startup() { return Response(command().tavrin_getStartupStatus()); }

    static void expectError(const Response& response, char protocol, const std::string& text) {
        ::expectError(response, kGenericError, text, protocol);
    }
};

} // namespace

TEST_F(sReadCmdBinaryTest, TellsWhetherItIsTheFirst) {
    inFreshProcess([] {
        write(kRevisionFile, "1A\n");
        EXPECT_EQ(frameOf(*status()), statusFrame(0, 0x1A));
        EXPECT_EQ(frameOf(*status()), statusFrame(1, 0x1A));
        EXPECT_EQ(frameOf(*status()), statusFrame(1, 0x1A));
    });
}

TEST_F(sReadCmdBinaryTest, AFirstStartupStatusComesAlone) {
    inFreshProcess([] {
        write(kRevisionFile, "1A");
        RecordingListener listener;
        command().setListener(&listener);
        EXPECT_EQ(frameOf(*startup()), statusFrame(0, 0x1A));
        EXPECT_THAT(listener.frames, IsEmpty());
        EXPECT_EQ(frameOf(*status()), statusFrame(1, 0x1A));
        EXPECT_THAT(listener.frames, IsEmpty());
    });
}

TEST_F(sReadCmdBinaryTest, ALaterStartupStatusIsAnnounced) {
    inFreshProcess([] {
        write(kRevisionFile, "1A");
        RecordingListener listener;
        command().setListener(&listener);
        status();
        for (int time = 0; time < 2; ++time) {
            listener.frames.clear();
            EXPECT_EQ(frameOf(*startup()), statusFrame(1, 0x1A));
            EXPECT_THAT(listener.frames,
                        ElementsAre(debugFrame("Startup State sent but requested again"),
                                    debugFrame("Probaby due to connection cut")));
        }
        command().setListener(nullptr);
        EXPECT_EQ(frameOf(*startup()), statusFrame(1, 0x1A)) << "with or without anybody to tell";
    });
}

TEST_F(sReadCmdBinaryTest, ReadsTheBoardRevisionInHexadecimal) {
    const Rows<const char*, unsigned int> rows = {{"0", 0},
                                                  {"1A", 0x1A},
                                                  {"1a\n", 0x1A},
                                                  {"  7", 7},
                                                  {"0x1A", 0x1A},
                                                  {"FFFF", 0xFFFF},
                                                  {"ABCD and more", 0xABCD},
                                                  {"12G", 0x12},
                                                  {"+1A", 0x1A},
                                                  {"0000000000000000001A", 0x1A}};
    for (const auto& [content, revision] : rows) {
        SCOPED_TRACE(content);
        inFreshProcess([content = content, revision = revision] {
            write(kRevisionFile, content);
            EXPECT_EQ(frameOf(*status()), statusFrame(0, revision));
        });
    }
}

TEST_F(sReadCmdBinaryTest, ABoardRevisionThatCannotBeReadIsReportedUntilItCan) {
    const Rows<const char*, const char*> rows = {
        {"12345", "Revision does not Fit in 2 Bytes"},
        {"10000", "Revision does not Fit in 2 Bytes"},
        {"-1", "Revision does not Fit in 2 Bytes"},
        {"10000001A", "Revision does not Fit in 2 Bytes"},
        {"FFFFFFFFFFFFFFFF0000001A", "Revision does not Fit in 2 Bytes"},
        {"", "Could not read the /dev/nvsku/rev file"},
        {"\n", "Could not read the /dev/nvsku/rev file"},
        {"xyz", "Could not read the /dev/nvsku/rev file"},
        {nullptr, "Failed to open the /dev/nvsku/rev file"}};
    for (const auto& [content, text] : rows) {
        SCOPED_TRACE(text);
        inFreshProcess([content = content, text = text] {
            remove(kRevisionFile);
            if (content != nullptr)
                write(kRevisionFile, content);
            expectError(status(), 't', text);
            expectError(status(), 't', text);
            expectError(startup(), 't', text);
            write(kRevisionFile, "1A");
            EXPECT_EQ(frameOf(*status()), statusFrame(1, 0x1A))
                << "a status had been built, for all that";
        });
    }
}

TEST_F(sReadCmdBinaryTest, TheBoardRevisionIsReadOnce) {
    inFreshProcess([] {
        write(kRevisionFile, "1A");
        EXPECT_EQ(frameOf(*status()), statusFrame(0, 0x1A));
        write(kRevisionFile, "2B");
        EXPECT_EQ(frameOf(*status()), statusFrame(1, 0x1A));
        remove(kRevisionFile);
        EXPECT_EQ(frameOf(*status()), statusFrame(1, 0x1A));
    });
}

TEST_F(sReadCmdBinaryTest, TheRequestBecomesWhatIsEchoed) {
    inFreshProcess([] {
        write(kRevisionFile, "1A");
        Bytes request = {0x02, 's'};
        EXPECT_EQ(Response(command().sendStatusTavrin(&request, sReadCmd::Requested))->code, 0u);
        EXPECT_THAT(request, ElementsAre(0x02, 's', 0x2C, 0x00));
        Bytes longer = {0x02, 's', 9, 9, 9, 9};
        EXPECT_EQ(Response(command().sendStatusTavrin(&longer, sReadCmd::Requested))->code, 0u);
        EXPECT_THAT(longer, ElementsAre(0x02, 's', 0x2C, 0x01));
    });
}

TEST_F(sReadCmdBinaryTest, AStatusIsForRequestsOfTwoBytes) {
    inFreshProcess([] {
        write(kRevisionFile, "1A");
        for (const int number : {0, 1, 3, 4, 255}) {
            SCOPED_TRACE(number);
            const auto length = static_cast<unsigned char>(number);
            Bytes request = {length, 's', 0x01};
            expectError(Response(command().sendStatusTavrin(&request, sReadCmd::Requested)), 't',
                        "Invalid Command Length");
            EXPECT_THAT(request, ElementsAre(length, 's', 0x01));
        }
        EXPECT_EQ(frameOf(*status()), statusFrame(0, 0x1A)) << "none had been built";
    });
}

TEST_F(sReadCmdBinaryTest, AnswersIdentityFiles) {
    write("/mnt/app/img_ver.txt", "IMG 1.2");
    write("/dev/nvsku/serial_num", "SN42");
    EXPECT_EQ(frameOf(*run({0x03, 's', 0x01})),
              (Bytes{15, 's', 0x01, 0, 0, 0, 0, 0, 'I', 'M', 'G', ' ', '1', '.', '2'}));
    EXPECT_EQ(frameOf(*run({0x03, 's', 0x02})),
              (Bytes{12, 's', 0x02, 0, 0, 0, 0, 0, 'S', 'N', '4', '2'}));
    remove("/mnt/app/img_ver.txt");
    expectError(run({0x03, 's', 0x01}), 't',
                "cannot open /mnt/app/img_ver.txt, no information available");
}

// The request has become what a status echoes before the revision is looked for.
TEST_F(sReadCmdBinaryTest, AStatusThatFailsIsAnsweredAsOneThatDoesNot) {
    inFreshProcess([this] {
        remove(kRevisionFile);
        for (const unsigned char sentBefore : Bytes{0, 1}) {
            EXPECT_EQ(send({0x02, 's'}), (Bytes{8, 's', 0x2C, sentBefore, 1, 1, 0, 0}));
            EXPECT_THAT(m_frontEnd.frames,
                        ElementsAre(debugFrame("Failed to open the /dev/nvsku/rev file")));
        }
    });
}

TEST_F(sReadCmdBinaryTest, AShortRequestThatFailsIsNotAnswered) {
    const Rows<Bytes, std::string> rows = {{{0x03, 's', 0x01}, "/mnt/app/img_ver.txt"},
                                           {{0x03, 's', 0x02}, "/dev/nvsku/serial_num"}};
    for (const auto& [request, path] : rows) {
        SCOPED_TRACE(path);
        remove(path);
        EXPECT_THROW(send(request), std::out_of_range);
        EXPECT_THAT(m_frontEnd.frames,
                    ElementsAre(debugFrame("cannot open " + path + ", no information available"),
                                debugFrame("request size < 4")));
    }
}

TEST_F(sReadCmdBinaryTest, ARequestForAFileStaysWhatItIs) {
    write("/dev/nvsku/serial_num", "SN42");
    Bytes request = {0x03, 's', 0x02};
    const Response response(command().process(&request));
    EXPECT_EQ(response->code, 0u);
    EXPECT_THAT(request, ElementsAre(0x03, 's', 0x02));
}

TEST_F(sReadCmdBinaryTest, WhatIsNoRequestForItIsRefused) {
    for (const unsigned char selection : Bytes{0x00, 0x03, 0x04, 0xFF})
        expectRefused({0x03, 's', selection}, kGenericError, "unsupported subcommand");
    expectRefused({0x04, 's', 0x01, 0x00}, kGenericError, "Command 's': too long!");
    expectRefused({0x05, 's', 0x03, 0x00, 0x00}, kGenericError, "Command 's': too long!");
}
