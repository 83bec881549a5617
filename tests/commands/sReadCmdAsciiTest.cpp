#include "commands/sReadCmd.h"
#include "core/BuildStamp.h"
#include "support/UnitFixture.h"

namespace {

using Tokens = std::vector<std::vector<char>>;

constexpr char kRevisionFile[] = "/dev/nvsku/rev";

std::string statusText(const std::string& revision) {
    return "\"" + std::string(getDateTimeString()) + "\" A024 \"" + revision + "\" 4";
}

class sReadCmdAsciiTest : public UnitFixture {
protected:
    static Response process(Tokens list) { return Response(sReadCmd::getInstance()->process(list)); }
    static Response status() { return process(tokens({"status"})); }

    static void expectError(const Response& response, char protocol, const std::string& text) {
        EXPECT_EQ(response->code, kGenericError);
        EXPECT_EQ(response->message, text);
        EXPECT_EQ(response->protocol, protocol);
    }
};

} // namespace

TEST_F(sReadCmdAsciiTest, ReportsStampProductRevisionAndProtocol) {
    const Rows<const char*, const char*> rows = {{"1A", "1A"},       {"1a\n", "1A"},
                                                 {"0", "0"},         {"0x007", "7"},
                                                 {"12345", "12345"}, {"deadbeef", "DEADBEEF"}};
    for (const auto& [content, revision] : rows) {
        SCOPED_TRACE(content);
        write(kRevisionFile, content);
        const Response response = status();
        EXPECT_EQ(response->code, 0u);
        EXPECT_EQ(answerOf(*response), statusText(revision));
    }
}

TEST_F(sReadCmdAsciiTest, TheAnswerLineBeginsWithTheName) {
    write(kRevisionFile, "1A");
    Tokens list = tokens({"status"});
    sReadCmd& command = *sReadCmd::getInstance();
    EXPECT_EQ(command.ascii_exec(command.process(list)), "status " + statusText("1A"));
}

TEST_F(sReadCmdAsciiTest, ABoardRevisionThatCannotBeReadIsReported) {
    write(kRevisionFile, "xyz");
    expectError(status(), 'a', "Failed to read from /dev/nvsku/rev file");
    write(kRevisionFile, "");
    expectError(status(), 'a', "Failed to read from /dev/nvsku/rev file");
    remove(kRevisionFile);
    expectError(status(), 'a', "Failed to open the /dev/nvsku/rev file");
    write(kRevisionFile, "2B");
    EXPECT_EQ(answerOf(*status()), statusText("2B"));
}

TEST_F(sReadCmdAsciiTest, LeavesAloneWhatTheBinaryStatusRemembers) {
    inFreshProcess([] {
        write(kRevisionFile, "12345");
        EXPECT_EQ(answerOf(*status()), statusText("12345"));
        write(kRevisionFile, "1A");
        Bytes request = {0x02, 's'};
        const Response first(sReadCmd::getInstance()->process(&request));
        ASSERT_EQ(frameOf(*first).size(), 24u);
        EXPECT_EQ(frameOf(*first)[3], 0) << "it is the first of its kind";
        EXPECT_EQ(frameOf(*first)[16], 0x1A);
        write(kRevisionFile, "2B");
        EXPECT_EQ(answerOf(*status()), statusText("2B")) << "read afresh";
    });
}

TEST_F(sReadCmdAsciiTest, AnswersIdentityFilesByTheirPrefix) {
    write("/mnt/app/img_ver.txt", "A");
    write("/dev/nvsku/serial_num", "AB");
    write("/mnt/app/version_info.txt", "ABC");
    write("/ifs/version_info.txt", std::string(300, '\0'));
    const Rows<const char*, std::string> rows = {
        {"01", "base64(QQ==)"},   {"01x", "base64(QQ==)"},
        {"02", "base64(QUI=)"},   {"03", "base64(QUJD)"},
        {"0345", "base64(QUJD)"}, {"04", "base64(" + std::string(400, 'A') + ")"},
    };
    for (const auto& [selection, answer] : rows) {
        SCOPED_TRACE(selection);
        const Response response = process(tokens({"status", selection}));
        EXPECT_EQ(response->code, 0u);
        EXPECT_EQ(answerOf(*response), answer);
    }
    EXPECT_EQ(answerOf(*process(tokens({"status", "01", "and", "more"}))), "base64(QQ==)");
    EXPECT_EQ(answerOf(*process({token("status"), {'0', '2'}})), "base64(QUI=)")
        << "without a zero byte";
}

TEST_F(sReadCmdAsciiTest, AMissingIdentityFileIsReported) {
    const Rows<const char*, std::string> rows = {{"01", "/mnt/app/img_ver.txt"},
                                                 {"02", "/dev/nvsku/serial_num"},
                                                 {"03", "/mnt/app/version_info.txt"},
                                                 {"04", "/ifs/version_info.txt"}};
    for (const auto& [selection, path] : rows) {
        SCOPED_TRACE(selection);
        remove(path);
        expectError(process(tokens({"status", selection})), 'a',
                    "cannot open " + path + ", no information available");
    }
}

TEST_F(sReadCmdAsciiTest, WhatIsNoRequestForItIsRefused) {
    for (const char* selection : {"", "0", "00", "05", "1", "10", " 01", "a01", "%s"}) {
        SCOPED_TRACE(selection);
        expectError(process(tokens({"status", selection})), 0, "unsupported subcommand");
    }
    expectError(process({token("status"), {}}), 0, "unsupported subcommand");
    expectError(process({token("status"), {'0'}}), 0, "unsupported subcommand");
    expectError(process({}), 0, "unsupported subcommand");
}
