#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <vector>

#include "commands/mvbtCmd.h"
#include "driver/ScriptedBluetooth.h"
#include "support/ErrorOutput.h"
#include "support/Waiting.h"

using Bytes = std::vector<unsigned char>;

constexpr char kReadFailed[] =
    "Prod.testserver: mvbt_read failed, the reading thread could not read mvbt\n"
    "Prod.testserver: Trying to close and reopen the interface\n";

/// The type, then the bytes, as they are fetched.
inline Bytes packet(unsigned char type, const Bytes& bytes) {
    Bytes all = {type};
    all.insert(all.end(), bytes.begin(), bytes.end());
    return all;
}

/// Far longer than closing may take, on a machine that is busy with other things.
constexpr std::chrono::seconds kPromptly{30};

/// The Bluetooth link with a scripted driver library.
class BluetoothFixture : public ::testing::Test {
protected:
    /// A type that a case may write and receive.
    static constexpr unsigned char kEvent = 0x04;

    // The link waits for readers that it left behind.
    ~BluetoothFixture() override { m_driver.letGo(); }

    void open() { ASSERT_EQ(m_link.open(), 0); }
    /// Opens it and waits until so many of its readers wait for a packet.
    void openAndRead(int readers = 1) {
        open();
        ASSERT_TRUE(m_driver.waitUntilInside(ScriptedBluetooth::InRead, readers));
    }
    void expectNotOpened(const std::string& told) {
        int result = 0;
        EXPECT_EQ(errorOutputOf([&] { result = m_link.open(); }), told);
        EXPECT_EQ(result, -1);
        EXPECT_FALSE(m_link.checkDll());
        EXPECT_FALSE(m_driver.isLoaded());
    }

    /// A packet comes, and waits to be fetched.
    void receive(const Bytes& bytes) {
        m_driver.receive(kEvent, bytes);
        ASSERT_TRUE(has(bytes.size() + 1));
    }

    /// Waits until so many bytes wait to be fetched.
    bool has(std::size_t bytes) {
        return eventually([&] { return m_link.getQueueSize() == bytes; });
    }
    bool isLoadedAgain() {
        return eventually([&] { return m_link.checkDll(); });
    }

    /// All that waits.
    Bytes fetch() {
        Bytes bytes;
        m_link.read(bytes, 0);
        return bytes;
    }
    /// Waits for a packet, and fetches it.
    void expectPacket(unsigned char type, const Bytes& bytes) {
        ASSERT_TRUE(has(bytes.size() + 1));
        EXPECT_EQ(fetch(), packet(type, bytes));
    }

    void write(unsigned char type, const Bytes& bytes) {
        m_link.write(type, bytes.data(), static_cast<int>(bytes.size()));
    }

    void closePromptly() {
        const auto before = std::chrono::steady_clock::now();
        EXPECT_EQ(m_link.close(), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - before, kPromptly);
        EXPECT_FALSE(m_link.checkDll());
    }

    /// That packets come in and go out.
    void expectWorking() {
        ASSERT_TRUE(m_driver.waitUntilInside(ScriptedBluetooth::InRead));
        fetch();
        m_driver.receive(kEvent, {0xAB});
        expectPacket(kEvent, {0xAB});
        const std::size_t before = m_driver.writes().size();
        write(1, {2, 3});
        EXPECT_THAT(m_driver.writes(), ::testing::SizeIs(before + 1));
    }

    ScriptedBluetooth m_driver;
    mvbtCmd m_link;
};
