#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <string>

#include "commands/cReadCmd.h"
#include "support/DescriptorLimit.h"
#include "support/ErrorOutput.h"
#include "support/RefusedCalls.h"
#include "support/UnitFixture.h"
#include "wire/Base64.h"

namespace {

constexpr char kFile[] = "/tmp/some file";

const Bytes kRequest = {0x04, 's', 0xA2, 0xA3};

class cReadCmdFileTest : public UnitFixture {
protected:
    static Response readBinary(const char* path) {
        Bytes request = kRequest;
        return Response(cReadCmd::getInstance()->ReadFromFileBinary(&request, path));
    }
    static Response readBase64(const char* path) {
        return Response(cReadCmd::getInstance()->ReadFromFileBase64(path));
    }
    static void expectError(const Response& response, char protocol, const std::string& text) {
        ::expectError(response, kGenericError, text, protocol);
    }
};

} // namespace

TEST_F(cReadCmdFileTest, BinaryAnswersTheFirst246Bytes) {
    for (const std::size_t size : {1u, 2u, 245u, 246u, 247u, 100000u}) {
        SCOPED_TRACE(size);
        std::string content(size, 'x');
        content[0] = '\0';
        content[std::min<std::size_t>(size, 246) - 1] = 'z';
        write(kFile, content);
        expectSuccess(*readBinary(kFile), answerTo(kRequest, bytesOf(content.substr(0, 246))));
    }
}

TEST_F(cReadCmdFileTest, BinaryReportsAnEmptyFile) {
    write(kFile, "");
    EXPECT_EQ(errorOutputOf([] { expectSuccess(*readBinary(kFile), answerTo(kRequest)); }),
              "Prod.testserver: File /tmp/some file is empty\n");
}

TEST_F(cReadCmdFileTest, BinaryTellsWhatIsWrongWithAFile) {
    expectError(readBinary("/tmp/none"), 't', "cannot open /tmp/none, no information available");
    expectError(readBinary("/tmp/%n%s"), 't', "cannot open /tmp/%n%s, no information available");
    expectError(readBinary("/tmp"), 't', "cannot read /tmp: Is a directory");
    const NoMoreDescriptors none;
    expectError(readBinary("/dev/null"), 't', "cannot open /dev/null, no information available");
}

TEST_F(cReadCmdFileTest, BinaryTellsThatAFileHasNoStatus) {
    write(kFile, "content");
    inFreshProcess([] {
        refuseSystemCalls(kFileStatusCalls, EIO);
        expectError(readBinary(kFile), 't', "cannot stat /tmp/some file, no information available");
    });
}

TEST_F(cReadCmdFileTest, Base64AnswersTheWholeFile) {
    const Rows<std::string, const char*> rows = {
        {"", "base64()"},
        {"A", "base64(QQ==)"},
        {"AB", "base64(QUI=)"},
        {"ABC", "base64(QUJD)"},
        {std::string("\0\0\0", 3), "base64(AAAA)"},
        {"\xFB\xFF\xBF", "base64(+/+/)"},
    };
    for (const auto& [content, answer] : rows) {
        SCOPED_TRACE(answer);
        write(kFile, content);
        expectSuccess(*readBase64(kFile), answer);
    }
    write(kFile, std::string(3000000, '\0'));
    EXPECT_TRUE(answerOf(*readBase64(kFile)) == "base64(" + std::string(4000000, 'A') + ")");
}

TEST_F(cReadCmdFileTest, Base64TellsThatAFileCannotBeOpened) {
    expectError(readBase64("/tmp/none"), 'a', "cannot open /tmp/none, no information available");
    expectError(readBase64("/tmp/%n%s"), 'a', "cannot open /tmp/%n%s, no information available");
}

TEST_F(cReadCmdFileTest, AFailureInTheMiddleIsNotASuccessWithoutContent) {
    struct Row {
        const char* what;
        std::initializer_list<int> calls;
        const char* text;
    };
    const Row rows[] = {
        {"status", kFileStatusCalls, "cannot stat /tmp/some file, no information available"},
        {"size", kSeekCalls, "cannot read /tmp/some file: Input/output error"},
        {"content", {SYS_pread64}, "cannot read /tmp/some file: Input/output error"},
    };
    write(kFile, "content");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        inFreshProcess([&row] {
            refuseSystemCalls(row.calls, EIO);
            expectError(readBase64(kFile), 'a', row.text);
        });
    }
    inFreshProcess([] {
        refuseSystemCalls({SYS_pread64}, EIO);
        expectError(readBinary(kFile), 't', "cannot read /tmp/some file: Input/output error");
    });
    expectError(readBase64("/tmp"), 'a', "cannot read /tmp: Is a directory");
}

TEST_F(cReadCmdFileTest, Base64DoesNotDependOnThePiecesThatAFileIsReadIn) {
    constexpr std::size_t kPiece = std::size_t{48} << 10;
    for (const std::size_t size : {kPiece - 1, kPiece, kPiece + 1, 3 * kPiece + 2}) {
        SCOPED_TRACE(size);
        std::string content(size, '\0');
        for (std::size_t at = 0; at < size; ++at)
            content[at] = static_cast<char>(at * 7 + at / 251);
        write(kFile, content);
        const auto* bytes = reinterpret_cast<const unsigned char*>(content.data());
        EXPECT_TRUE(answerOf(*readBase64(kFile)) == "base64(" + System::encodeBase64(bytes, size) + ")");
    }
}

TEST_F(cReadCmdFileTest, AFileIsReadWholeIntoAString) {
    const std::string content("line\n\0\xFF last", 12);
    write(kFile, content);
    EXPECT_EQ(readFileToString(kFile), content);
    write(kFile, std::string(1000000, 'x'));
    EXPECT_EQ(readFileToString(kFile).size(), 1000000u);
    write(kFile, "");
    EXPECT_EQ(readFileToString(kFile), "");
    EXPECT_EQ(readFileToString("/tmp/none"), "");
    EXPECT_EQ(readFileToString("/tmp"), "");
}
