// What the commands that use files and nodes make of this system.
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "NodeResults.h"
#include "commands/PWriteCmd.h"
#include "commands/cReadCmd.h"
#include "commands/mCmd.h"
#include "commands/pReadCmd.h"
#include "commands/sReadCmd.h"
#include "core/ProcessResponseAscii.h"

using ::testing::ElementsAre;
using ::testing::EndsWith;

namespace {

using Bytes = std::vector<unsigned char>;
using Response = std::unique_ptr<ProcessResponse>;

constexpr int kSdCard = 180;

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

class QnxCommandNodesTest : public QnxTest {
protected:
    /// A node of that kind and size becomes descriptor 7 and is looked at so often.
    static void nextNode(mode_t kind, int looks, off_t size = 0) {
        FakeSystem::next("open64", {7});
        struct stat told {};
        told.st_mode = kind;
        told.st_size = size;
        for (int look = 0; look < looks; ++look)
            nextStatus(told);
    }

    /// Port 3, an output, is switched on: the answer's code.
    static unsigned writePort() {
        Bytes request = {6, 'P', 0xE3, 1, 3, 4};
        return Response(PWriteCmd::getInstance()->writePort(&request))->code;
    }

    unsigned readPort() { return pReadCmd::getInstance()->readPortValue(3, m_value); }

    static void expectSerialNumber() {
        Bytes request = {3, 's', 2};
        const Response response(sReadCmd::getInstance()->process(&request));
        ASSERT_EQ(response->protocol, 't');
        EXPECT_THAT(static_cast<ProcessResponseTavrin&>(*response).data,
                    ElementsAre(12, 's', 2, 0, 0, 0, 0, 0, 'S', 'N', '4', '2'));
    }

    char m_value = 'z';
};

} // namespace

TEST_F(QnxCommandNodesTest, APortIsRead) {
    nextNode(S_IFCHR, 2);
    FakeSystem::next("read", {1, 0, {'1'}});
    EXPECT_EQ(readPort(), 0u);
    EXPECT_EQ(m_value, '1');
    EXPECT_CALLS("open64 \"/dev/nvgpio/usb_pwr_1\" 0x80", "fcntl 7 2 0x1", kLimit, "fstat 7", kLimit,
                 "fstat 7", kLimit, "read 7 1", "close 7");
}

TEST_F(QnxCommandNodesTest, APortThatDoesNotAnswerIsItsErrorNumber) {
    nextNode(S_IFCHR, 2);
    FakeSystem::fail("read", ETIMEDOUT);
    EXPECT_EQ(readPort(), static_cast<unsigned>(ETIMEDOUT));
    EXPECT_EQ(FakeSystem::calls().back(), "close 7");
}

TEST_F(QnxCommandNodesTest, APortIsWritten) {
    nextNode(S_IFCHR, 1);
    EXPECT_EQ(writePort(), 0u);
    EXPECT_CALLS("open64 \"/dev/nvgpio/usb_pwr_1\" 0x81", "fcntl 7 2 0x1", kLimit, "fstat 7", kLimit,
                 "write 7 \"1\"", "close 7");
}

TEST_F(QnxCommandNodesTest, ThePortsErrorsAreItsNumbers) {
    FakeSystem::fail("open64", ENOENT);
    EXPECT_EQ(writePort(), 0x40000001u);
    FakeSystem::fail("open64", EBUSY);
    EXPECT_EQ(writePort(), 0x27000000u);
    nextNode(S_IFCHR, 1);
    FakeSystem::fail("write", EIO);
    EXPECT_EQ(writePort(), 0x27010000u);
    FakeSystem::fail("open64", ENXIO);
    EXPECT_EQ(readPort(), static_cast<unsigned>(ENXIO));
}

TEST_F(QnxCommandNodesTest, TheRevisionIsReadToItsEnd) {
    nextNode(S_IFCHR, 3);
    FakeSystem::next("read", {1, 0, bytesOf("2")});
    FakeSystem::next("read", {2, 0, bytesOf("c\n")});
    const Response response(sReadCmd::getInstance()->sendStatusAscii());
    ASSERT_EQ(response->protocol, 'a');
    EXPECT_THAT(static_cast<ProcessResponseAscii&>(*response).answer, EndsWith(" A024 \"2C\" 4"));
    EXPECT_CALLS("open64 \"/dev/nvsku/rev\" 0x80", "fcntl 7 2 0x1", kLimit, "fstat 7", kLimit, "fstat 7",
                 kLimit, "read 7 256", kLimit, "fstat 7", kLimit, "read 7 256", "close 7");
}

TEST_F(QnxCommandNodesTest, ARevisionThatCannotBeReadIsReported) {
    FakeSystem::fail("open64", ENOENT);
    EXPECT_EQ(Response(sReadCmd::getInstance()->sendStatusAscii())->message,
              "Failed to open the /dev/nvsku/rev file");
    nextNode(S_IFCHR, 2);
    FakeSystem::fail("read", ETIMEDOUT);
    EXPECT_EQ(Response(sReadCmd::getInstance()->sendStatusAscii())->message,
              "Failed to read from /dev/nvsku/rev file");
}

TEST_F(QnxCommandNodesTest, AnIdentityFileIsReadWithinItsSize) {
    nextNode(S_IFREG, 3, 4);
    FakeSystem::next("pread", {4, 0, bytesOf("SN42")});
    expectSerialNumber();
    EXPECT_CALLS("open64 \"/dev/nvsku/serial_num\" 0x80", "fcntl 7 2 0x1", kLimit, "fstat 7", kLimit,
                 "fstat 7", kLimit, "fstat 7", "pread 7 4 0", "close 7");
}

TEST_F(QnxCommandNodesTest, AnIdentityNodeThatReadsOnIsRead) {
    nextNode(S_IFCHR, 4, 4);
    FakeSystem::fail("pread", ENOSYS);
    FakeSystem::next("read", {4, 0, bytesOf("SN42")});
    expectSerialNumber();
}

TEST_F(QnxCommandNodesTest, AnIdentityFileIsReadWholeInAscii) {
    nextNode(S_IFREG, 4, 4);
    FakeSystem::next("lseek", {4});
    FakeSystem::next("pread", {4, 0, bytesOf("SN42")});
    FakeSystem::next("__b64_ntop", {8, 0, bytesOf("U040Mg==")});
    const Response response(cReadCmd::getInstance()->ReadFromFileBase64("/dev/nvsku/serial_num"));
    ASSERT_EQ(response->protocol, 'a');
    EXPECT_EQ(static_cast<ProcessResponseAscii&>(*response).answer, "base64(U040Mg==)");
    const std::vector<std::string> calls = FakeSystem::calls();
    EXPECT_EQ(std::vector<std::string>(calls.begin(), calls.begin() + 10),
              (std::vector<std::string>{"open64 \"/dev/nvsku/serial_num\" 0x80", "fcntl 7 2 0x1", kLimit,
                                        "fstat 7", kLimit, "fstat 7", kLimit, "fstat 7", "lseek 7 0 2",
                                        kLimit}));
}

TEST_F(QnxCommandNodesTest, ANodeThatDoesNotTellItsStatusOrSizeIsReported) {
    const auto textOf = [] {
        return Response(cReadCmd::getInstance()->ReadFromFileBase64("/dev/node"))->message;
    };
    nextNode(S_IFCHR, 1);
    FakeSystem::fail("fstat", ETIMEDOUT);
    EXPECT_EQ(textOf(), "cannot stat /dev/node, no information available");
    nextNode(S_IFCHR, 3);
    FakeSystem::fail("lseek", ETIMEDOUT);
    EXPECT_EQ(textOf(), "cannot read /dev/node: Connection timed out");
}

TEST_F(QnxCommandNodesTest, BlocksAreMovedWithOneTransfer) {
    FakeSystem::next("open64", {7});
    nextKind(S_IFBLK);
    FakeSystem::next("open64", {8});
    struct stat told {};
    told.st_mode = S_IFBLK;
    told.st_blksize = 2;
    told.st_blocks = 10;
    nextStatus(told);
    mCmd::Handle card(kSdCard, "/dev/mnand0", true);
    EXPECT_FALSE(card.open().failed());
    EXPECT_CALLS("access \"/dev/mnand0\" 0x0", "open64 \"/dev/mnand0\" 0x82", "fcntl 7 2 0x1", kLimit,
                 "fstat 7", "open64 \"/dev/mnand0\" 0x2", "fcntl 8 2 0x1", "close 7", kLimit, "fstat 8");

    Bytes buffer(4);
    unsigned bytes = 0;
    FakeSystem::next("read", {4, 0, bytesOf("abcd")});
    EXPECT_FALSE(card.read(bytes, 3, 2, buffer.data(), 4).failed());
    EXPECT_EQ(bytes, 4u);
    EXPECT_EQ(buffer, bytesOf("abcd"));
    EXPECT_CALLS("access \"/dev/mnand0\" 0x0", kLimit, "fstat 8", "lseek 8 6 0", "read 8 4");

    EXPECT_FALSE(card.write(bytes, 3, 2, buffer.data(), 4).failed());
    EXPECT_CALLS("access \"/dev/mnand0\" 0x0", kLimit, "fstat 8", "lseek 8 6 0", "write 8 \"abcd\"");
    EXPECT_FALSE(card.close().failed());
    EXPECT_CALLS("access \"/dev/mnand0\" 0x0", "close 8");
}

TEST_F(QnxCommandNodesTest, ADeviceThatFailsIsReported) {
    mCmd::Handle card(kSdCard, "/dev/mnand0", true);
    FakeSystem::fail("open64", EBUSY);
    const DeviceResult refused = card.open();
    EXPECT_EQ(refused.code, EBUSY);
    EXPECT_EQ(refused.message, "Failed to open Device /dev/mnand0: Device or resource busy");
    FakeSystem::fail("access", ENOENT);
    EXPECT_EQ(card.open().message, "Device not inserted");
}
