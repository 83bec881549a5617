#include "commands/sReadCmd.h"
#include "core/BuildStamp.h"
#include "support/UnitFixture.h"

namespace {

constexpr char kRevisionFile[] = "/dev/nvsku/rev";

std::string statusText(const std::string& revision) {
    return "\"" + std::string(getDateTimeString()) + "\" A024 \"" + revision + "\" 4";
}

class sReadCmdAsciiTest : public CommandTest<sReadCmd, UnitFixture> {
protected:
    static Response status() { return run(Words{"status"}); }

    static void expectError(const Response& response, const std::string& text) {
        ::expectError(response, kGenericError, text, 'a');
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
        expectResponse(Words{"status"}, statusText(revision));
    }
}

TEST_F(sReadCmdAsciiTest, TheAnswerLineBeginsWithTheName) {
    write(kRevisionFile, "1A");
    expectAnswer(Words{"status"}, "status " + statusText("1A"));
}

TEST_F(sReadCmdAsciiTest, ABoardRevisionThatCannotBeReadIsReported) {
    write(kRevisionFile, "xyz");
    expectError(status(), "Failed to read from /dev/nvsku/rev file");
    write(kRevisionFile, "");
    expectError(status(), "Failed to read from /dev/nvsku/rev file");
    remove(kRevisionFile);
    expectError(status(), "Failed to open the /dev/nvsku/rev file");
    write(kRevisionFile, "2B");
    expectResponse(Words{"status"}, statusText("2B"));
}

TEST_F(sReadCmdAsciiTest, LeavesAloneWhatTheBinaryStatusRemembers) {
    inFreshProcess([] {
        write(kRevisionFile, "12345");
        expectResponse(Words{"status"}, statusText("12345"));
        write(kRevisionFile, "1A");
        const Response first = run(Bytes{0x02, 's'});
        ASSERT_EQ(frameOf(*first).size(), 24u);
        EXPECT_EQ(frameOf(*first)[3], 0) << "it is the first of its kind";
        EXPECT_EQ(frameOf(*first)[16], 0x1A);
        write(kRevisionFile, "2B");
        expectResponse(Words{"status"}, statusText("2B")); // read afresh
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
    for (const auto& [selection, answer] : rows)
        expectResponse(Words{"status", selection}, answer);
    expectResponse(Words{"status", "01", "and", "more"}, "base64(QQ==)");
    expectResponse(Tokens{token("status"), {'0', '2'}}, "base64(QUI=)"); // without a zero byte
}

TEST_F(sReadCmdAsciiTest, AMissingIdentityFileIsReported) {
    const Rows<const char*, std::string> rows = {{"01", "/mnt/app/img_ver.txt"},
                                                 {"02", "/dev/nvsku/serial_num"},
                                                 {"03", "/mnt/app/version_info.txt"},
                                                 {"04", "/ifs/version_info.txt"}};
    for (const auto& [selection, path] : rows) {
        SCOPED_TRACE(selection);
        remove(path);
        expectError(run(Words{"status", selection}),
                    "cannot open " + path + ", no information available");
    }
}

TEST_F(sReadCmdAsciiTest, WhatIsNoRequestForItIsRefused) {
    for (const char* selection : {"", "0", "00", "05", "1", "10", " 01", "a01", "%s"}) {
        expectRefused(Words{"status", selection}, kGenericError, "unsupported subcommand");
    }
    expectRefused(Tokens{token("status"), {}}, kGenericError, "unsupported subcommand");
    expectRefused(Tokens{token("status"), {'0'}}, kGenericError, "unsupported subcommand");
    expectRefused(Tokens{}, kGenericError, "unsupported subcommand");
}
