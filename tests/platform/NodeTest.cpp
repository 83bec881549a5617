// Files and nodes that commands open by path: nothing that stands there makes its user wait without end.
#include "platform/Node.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "platform/BlockDevice.h"
#include "support/ErrorNumber.h"
#include "support/FolderFixture.h"
#include "support/PseudoTerminal.h"
#include "support/Rows.h"
#include "support/SleepingThread.h"

using std::chrono::steady_clock;
using System::Descriptor;
using System::openNode;
using System::readNode;
using System::readNodeAt;
using System::writeNode;

namespace {

// Far beyond the longest wait, and far below a test's patience.
constexpr std::chrono::seconds kWithoutEnd{20};

class NodeTest : public FolderFixture {
protected:
    std::string file(const std::string& content) const {
        const std::string path = m_folder / "file";
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    std::string pipe() const {
        const std::string path = m_folder / "pipe";
        EXPECT_EQ(::mkfifo(path.c_str(), S_IRUSR | S_IWUSR), 0);
        return path;
    }

    static void expectTimedOut(const std::function<bool()>& succeeds) {
        const auto start = steady_clock::now();
        errno = 0;
        EXPECT_EQ(errorOf(succeeds()), ETIMEDOUT);
        EXPECT_GE(steady_clock::now() - start, System::kLongestNodeWait);
        EXPECT_LT(steady_clock::now() - start, kWithoutEnd);
    }

    char m_byte = 'z';
};

/// A character device that answers what the test types.
class TerminalNodeTest : public NodeTest {
protected:
    Descriptor openLine() const { return openNode(m_line.path().c_str(), O_RDONLY); }

    PseudoTerminal m_line;
};

} // namespace

TEST_F(NodeTest, AFileIsReadAndWrittenToTheByte) {
    const std::string path = file("0123456789");
    Descriptor node = openNode(path.c_str(), O_RDONLY);
    ASSERT_TRUE(node);
    EXPECT_NE(::fcntl(node.get(), F_GETFD) & FD_CLOEXEC, 0);
    std::array<char, 16> bytes{};
    EXPECT_EQ(readNode(node.get(), bytes.data(), 4), 4);
    EXPECT_EQ(readNodeAt(node.get(), bytes.data() + 4, bytes.size() - 4, 4), 6);
    EXPECT_EQ(std::string(bytes.data()), "0123456789");
    EXPECT_EQ(readNodeAt(node.get(), bytes.data(), 1, 10), 0);
    EXPECT_EQ(errorOf(writeNode(node.get(), "x", 1)), EBADF);

    node = openNode(path.c_str(), O_WRONLY);
    EXPECT_EQ(writeNode(node.get(), "ab", 2), 2);
    std::string content;
    std::ifstream(path) >> content;
    EXPECT_EQ(content, "ab23456789");
}

TEST_F(NodeTest, TellsStatusAndSize) {
    const Descriptor node = openNode(file("0123456789").c_str(), O_RDONLY);
    struct stat status {};
    ASSERT_TRUE(System::nodeStatus(node.get(), status));
    EXPECT_TRUE(S_ISREG(status.st_mode));
    EXPECT_EQ(System::nodeSize(node.get()), 10);

    const Descriptor pipeNode(::open(pipe().c_str(), O_RDWR | O_CLOEXEC));
    EXPECT_EQ(System::nodeSize(pipeNode.get()), 0) << "a pipe has no positions";
    const Descriptor folder(::open(m_folder.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(errorOf(System::nodeSize(folder.get())), EISDIR);
    EXPECT_FALSE(System::nodeStatus(-1, status));
    EXPECT_EQ(errorOf(System::nodeSize(-1)), EBADF);
}

TEST_F(NodeTest, WhatCannotBeOpenedIsEmptyAndSaysWhy) {
    const Rows<std::string, int, int> rows = {{m_folder / "nothing", O_RDONLY, ENOENT},
                                              {m_folder, O_WRONLY, EISDIR},
                                              {"/dev/null/node", O_RDONLY, ENOTDIR}};
    for (const auto& [path, access, error] : rows) {
        SCOPED_TRACE(path);
        errno = 0;
        EXPECT_EQ(errorOf(openNode(path.c_str(), access)), error);
    }
}

TEST_F(NodeTest, AManagerThatAnswersNobodyIsNotWaitedFor) {
    const std::string path = m_folder / "socket";
    const Descriptor manager(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::copy(path.begin(), path.end(), address.sun_path);
    ASSERT_EQ(::bind(manager.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    for (const int access : {O_RDONLY, O_WRONLY, O_RDWR}) {
        EXPECT_EQ(errorOf(openNode(path.c_str(), access)), ENXIO);
    }
}

TEST_F(NodeTest, APipeThatNobodyWritesToCannotBeOpenedForReading) {
    const std::string path = pipe();
    expectTimedOut([&] { return static_cast<bool>(openNode(path.c_str(), O_RDONLY)); });
    expectTimedOut([&] { return static_cast<bool>(System::openBlockDevice(path.c_str(), O_RDONLY)); });
    const Descriptor silentWriter(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    expectTimedOut([&] { return static_cast<bool>(openNode(path.c_str(), O_RDONLY)); });
}

TEST_F(NodeTest, APipesWriterIsMet) {
    const std::string path = pipe();
    std::thread writer([&path] {
        const Descriptor end(::open(path.c_str(), O_WRONLY | O_CLOEXEC)); // waits for the reader
        EXPECT_EQ(::write(end.get(), "1", 1), 1);
    });
    const Descriptor node = openNode(path.c_str(), O_RDONLY);
    writer.join();
    ASSERT_TRUE(node);
    EXPECT_EQ(readNodeAt(node.get(), &m_byte, 1, 7), 1) << "a pipe has no positions";
    EXPECT_EQ(m_byte, '1');
    EXPECT_EQ(readNode(node.get(), &m_byte, 1), 0);
}

TEST_F(NodeTest, APipeThatNobodyReadsCannotBeOpenedForWriting) {
    EXPECT_EQ(errorOf(openNode(pipe().c_str(), O_WRONLY)), ENXIO);
}

TEST_F(NodeTest, APipeThatIsFullIsNotWrittenTo) {
    const std::string path = pipe();
    const Descriptor reader(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const Descriptor node = openNode(path.c_str(), O_WRONLY);
    ASSERT_TRUE(node);
    const std::string much(1 << 20, 'm');
    EXPECT_GT(writeNode(node.get(), much.data(), much.size()), 0);
    expectTimedOut([&] { return writeNode(node.get(), "1", 1) >= 0; });
}

TEST_F(TerminalNodeTest, ASilentDeviceIsOpenAtOnceAndNotReadWithoutEnd) {
    const Descriptor node = openLine();
    ASSERT_TRUE(node);
    expectTimedOut([&] { return readNode(node.get(), &m_byte, 1) >= 0; });
    expectTimedOut([&] { return readNodeAt(node.get(), &m_byte, 1, 0) >= 0; });
    EXPECT_EQ(m_byte, 'z');
    EXPECT_EQ(readNode(node.get(), &m_byte, 0), 0) << "nobody waits for nothing";
}

TEST_F(TerminalNodeTest, ADeviceThatTakesAMomentIsRead) {
    const Descriptor node = openLine();
    ASSERT_TRUE(node);
    SleepingThread reader;
    ssize_t count = 0;
    std::thread thread([&] {
        reader.isMe();
        count = readNode(node.get(), &m_byte, 1);
    });
    EXPECT_TRUE(reader.fallsAsleep());
    m_line.send("1\n");
    thread.join();
    EXPECT_EQ(count, 1);
    EXPECT_EQ(m_byte, '1');
}

TEST_F(TerminalNodeTest, ADeviceThatIsGoneEndsTheWait) {
    const Descriptor node = openLine();
    SleepingThread reader;
    ssize_t count = 1;
    std::thread thread([&] {
        reader.isMe();
        count = readNode(node.get(), &m_byte, 1);
    });
    EXPECT_TRUE(reader.fallsAsleep());
    m_line.hangUp();
    thread.join();
    EXPECT_LE(count, 0);
}
