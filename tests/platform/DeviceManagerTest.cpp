// Devices behind a manager's socket: what is opened, and what goes to and fro.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <array>

#include "manager/ManagerFixture.h"
#include "support/DescriptorLimit.h"
#include "support/ErrorNumber.h"
#include "support/Rows.h"

using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

namespace fs = std::filesystem;

class DeviceManagerTest : public ManagerFixture {};

} // namespace

TEST_F(DeviceManagerTest, AManagersSocketIsConnectedTo) {
    open();
    EXPECT_NE(::fcntl(m_device.get(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_NE(::fcntl(m_device.get(), F_GETFL) & O_NONBLOCK, 0);
    expectWorking();
    EXPECT_EQ(m_manager->connections(), 1);
}

TEST_F(DeviceManagerTest, AManagersSocketMayStandBehindALink) {
    fs::create_symlink(m_path, m_folder / "link");
    m_device = System::openDevice((m_folder / "link").c_str());
    ASSERT_TRUE(m_device);
    expectWorking();
}

TEST_F(DeviceManagerTest, AnythingElseIsOpenedForReadingAndWritingWithoutWaiting) {
    const std::string pipe = m_folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {std::string("/dev/null"), pipe}) {
        SCOPED_TRACE(path);
        const System::Descriptor device = System::openDevice(path.c_str());
        ASSERT_TRUE(device);
        const int flags = ::fcntl(device.get(), F_GETFL);
        EXPECT_EQ(flags & O_ACCMODE, O_RDWR);
        EXPECT_NE(flags & O_NONBLOCK, 0);
        EXPECT_NE(::fcntl(device.get(), F_GETFD) & FD_CLOEXEC, 0);
    }
}

TEST_F(DeviceManagerTest, WhatCannotBeOpenedIsEmptyAndSaysWhy) {
    m_manager.reset();
    const auto expectRefused = [](const fs::path& path, int error) {
        SCOPED_TRACE(path);
        errno = 0;
        EXPECT_EQ(errorOf(System::openDevice(path.c_str())), error);
    };
    expectRefused(m_path, ENOENT);
    expectRefused(m_folder / "none" / "bus", ENOENT);
    expectRefused(m_folder, EISDIR);
    expectRefused("", ENOENT);
}

TEST_F(DeviceManagerTest, ASocketThatCannotBeConnectedToIsEmptyAndSaysWhy) {
    const auto socketAt = [this](const char* name, int type) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (m_folder / name).string().copy(address.sun_path, sizeof address.sun_path - 1);
        System::Descriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
        EXPECT_EQ(::bind(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        return socket;
    };
    const auto expectRefused = [this](const char* name, int error) {
        SCOPED_TRACE(name);
        const std::size_t before = openDescriptors();
        errno = 0;
        EXPECT_EQ(errorOf(System::openDevice((m_folder / name).c_str())), error);
        EXPECT_EQ(openDescriptors(), before);
    };
    socketAt("left", SOCK_SEQPACKET);
    expectRefused("left", ECONNREFUSED);
    const System::Descriptor stream = socketAt("stream", SOCK_STREAM);
    ASSERT_EQ(::listen(stream.get(), 1), 0);
    expectRefused("stream", EPROTOTYPE);
    const System::Descriptor busy = socketAt("busy", SOCK_SEQPACKET);
    ASSERT_EQ(::listen(busy.get(), 0), 0);
    const System::Descriptor first = System::openDevice((m_folder / "busy").c_str());
    EXPECT_TRUE(first);
    expectRefused("busy", EAGAIN);
    const std::string longName(120, 'x');
    fs::create_symlink(m_path, m_folder / longName);
    expectRefused(longName.c_str(), ENAMETOOLONG);
}

TEST_F(DeviceManagerTest, WithoutADescriptorLeftNothingIsOpened) {
    const NoMoreDescriptors none;
    EXPECT_EQ(errorOf(System::openDevice(m_path.c_str())), EMFILE);
}

TEST_F(DeviceManagerTest, ARequestCarriesItsSizesAndItsPartsInOrder) {
    open();
    const Bytes first = counting(3);
    const Bytes second = counting(2, 0xF0);
    std::array<unsigned char, 4> one{};
    std::array<unsigned char, 300> two{};
    const System::SendPart parts[] = {{first.data(), first.size()}, {second.data(), second.size()}};
    const Rows<std::uint32_t, std::vector<System::SendPart>, std::vector<System::ReplyPart>, Bytes>
        rows = {
            {kNoData, {}, {}, littleEndian({1, 0, 0, 0})},
            {0, {}, {}, littleEndian({0, 0, 0, 0})},
            {0xFEDCBA98, {parts[0]}, {}, joined({littleEndian({0xFEDCBA98, 3, 0, 0}), first})},
            {kTowards,
             {parts[0], parts[1]},
             {},
             joined({littleEndian({kTowards, 5, 0, 0}), first, second})},
            {kTowards,
             {parts[1], parts[0]},
             {},
             joined({littleEndian({kTowards, 5, 0, 0}), second, first})},
            {kTowards, {{nullptr, 0}, parts[0]}, {}, joined({littleEndian({kTowards, 3, 0, 0}), first})},
            {kBack, {}, {{one.data(), 4}}, littleEndian({kBack, 0, 4, 0})},
            {kBoth,
             {parts[1]},
             {{one.data(), 4}, {two.data(), 300}},
             joined({littleEndian({kBoth, 2, 304, 0}), second})},
            {kTowards, {}, {}, littleEndian({kTowards, 0, 0, 0})},
        };
    for (const auto& [command, send, reply, packet] : rows) {
        SCOPED_TRACE(command);
        m_manager->willAnswer(0);
        EXPECT_EQ(System::requestDevice(m_device.get(), command, send, reply), 0);
        EXPECT_EQ(m_manager->lastRequest(), packet);
    }
    EXPECT_THAT(m_manager->requests(), SizeIs(std::size(rows)));
    EXPECT_EQ(m_manager->connections(), 1);
}

TEST_F(DeviceManagerTest, WithoutASendPartTheFirstReplyPartIsTheInputOfWhatGoesTowardsTheDevice) {
    open();
    Bytes header = counting(4);
    Bytes room(2, 0);
    const Rows<std::uint32_t, Bytes> rows = {
        {kBoth, joined({littleEndian({kBoth, 4, 6, 0}), counting(4)})},
        {kTowards, joined({littleEndian({kTowards, 4, 6, 0}), counting(4)})},
        {kBack, littleEndian({kBack, 0, 6, 0})},
        {0, littleEndian({0, 0, 6, 0})},
    };
    for (const auto& [command, packet] : rows) {
        SCOPED_TRACE(command);
        m_manager->willAnswer(0);
        EXPECT_EQ(System::requestDevice(m_device.get(), command, {},
                                        {{header.data(), header.size()}, {room.data(), room.size()}}),
                  0);
        EXPECT_EQ(m_manager->lastRequest(), packet);
    }
    EXPECT_EQ(header, counting(4));
}

TEST_F(DeviceManagerTest, OneBlockOfDataGoesWhicheverWayTheCommandSays) {
    open();
    const Rows<Bytes, std::uint32_t, bool> rows = {
        {littleEndian({kNoData, 0, 0, 0}), kNoData, false},
        {joined({littleEndian({kTowards, 4, 0, 0}), counting(4)}), kTowards, false},
        {littleEndian({kBack, 0, 4, 0}), kBack, true},
        {joined({littleEndian({kBoth, 4, 4, 0}), counting(4)}), kBoth, true},
    };
    for (const auto& [packet, command, comesBack] : rows) {
        SCOPED_TRACE(command);
        Bytes data = counting(4);
        m_manager->willAnswer(0, counting(4, 0x80));
        EXPECT_EQ(System::requestDevice(m_device.get(), command, data.data(), data.size()), 0);
        EXPECT_EQ(m_manager->lastRequest(), packet);
        EXPECT_EQ(data, comesBack ? counting(4, 0x80) : counting(4));
    }
}

TEST_F(DeviceManagerTest, AnAnswerFillsThePartsInOrderAndNothingElse) {
    open();
    for (const std::size_t size : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 1000U, 100000U}) {
        SCOPED_TRACE(size);
        // Two parts of 3 and 4 bytes, each between guards.
        std::array<unsigned char, 16> bytes{};
        bytes.fill(kGuard);
        auto expected = bytes;
        for (std::size_t at = 0; at < std::min<std::size_t>(size, 7); ++at)
            expected[(at < 3 ? 2 : 8 - 3) + at] = static_cast<unsigned char>(at + 1);
        m_manager->willAnswer(0, counting(size));
        EXPECT_EQ(System::requestDevice(m_device.get(), kBack, {}, {{&bytes[2], 3}, {&bytes[8], 4}}), 0);
        EXPECT_EQ(bytes, expected);
    }
    expectWorking();
    EXPECT_EQ(m_manager->connections(), 1) << "what was too much is forgotten";
}

TEST_F(DeviceManagerTest, AnAnswerThatMustBeWholeIsAFailureWhenItIsNot) {
    open();
    for (const std::size_t size : {0U, 1U, 3U, 6U, 7U, 8U}) {
        SCOPED_TRACE(size);
        std::array<unsigned char, 7> bytes{};
        bytes.fill(kGuard);
        const auto untouched = bytes;
        m_manager->willAnswer(0, counting(size));
        const int result = System::requestDevice(
            m_device.get(), kBack, {}, {{bytes.data(), 3}, {&bytes[3], 4}}, System::ReplySize::Whole);
        EXPECT_EQ(result, size < bytes.size() ? EPROTO : 0);
        EXPECT_EQ(bytes == untouched, size < bytes.size());
    }
    m_manager->willAnswer(EIO, counting(1));
    unsigned char byte = kGuard;
    EXPECT_EQ(System::requestDevice(m_device.get(), kBack, {}, {{&byte, 1}}, System::ReplySize::Whole),
              EIO)
        << "the manager's own word counts";
    expectWorking();
    EXPECT_EQ(m_manager->connections(), 1);
}

TEST_F(DeviceManagerTest, TheResultIsTheManagers) {
    open();
    for (const int result : {0, 1, 5, 12, 14, 22, 255, 256, 0x7FFFFFFF, -1, -22}) {
        SCOPED_TRACE(result);
        m_manager->willAnswer(result);
        EXPECT_EQ(request(), result);
    }
    EXPECT_EQ(m_manager->connections(), 1);
}

TEST_F(DeviceManagerTest, ARequestThatTheSocketCannotTakeIsAnError) {
    open();
    const Bytes much(8 << 20);
    EXPECT_EQ(System::requestDevice(m_device.get(), kTowards, {{much.data(), much.size()}}, {}),
              EMSGSIZE);
    expectWorking();
}

TEST_F(DeviceManagerTest, ALongRequestComesWhole) {
    open();
    const Bytes data = counting(100000);
    m_manager->willAnswer(0);
    EXPECT_EQ(System::requestDevice(m_device.get(), kTowards, {{data.data(), data.size()}}, {}), 0);
    EXPECT_TRUE(m_manager->lastRequest() == joined({littleEndian({kTowards, 100000, 0, 0}), data}));
}

TEST_F(DeviceManagerTest, ADeviceThatIsNeitherAManagerNorABusKnowsNoCommands) {
    m_device = System::openDevice("/dev/null");
    ASSERT_TRUE(m_device);
    EXPECT_EQ(request(), ENOTTY);
    EXPECT_EQ(request(kBoth), ENOTTY);
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}
