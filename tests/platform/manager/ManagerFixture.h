#pragma once

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "manager/ScriptedManager.h"
#include "platform/DeviceManager.h"
#include "support/FolderFixture.h"

using Bytes = ScriptedManager::Bytes;

// Made-up commands, by the way that their data goes.
constexpr std::uint32_t kNoData = 0x00000001;
constexpr std::uint32_t kTowards = 0x80040502;
constexpr std::uint32_t kBack = 0x40040503;
constexpr std::uint32_t kBoth = 0xC0040504;

/// What nobody may write to is filled with.
constexpr unsigned char kGuard = 0x5A;

/// A manager at a path of the case's own, and the device that stands for it.
class ManagerFixture : public FolderFixture {
protected:
    void open() {
        m_device = System::openDevice(m_path.c_str());
        ASSERT_TRUE(m_device) << std::strerror(errno);
    }

    /// The manager goes, if it is there, and another one takes its place.
    void comeBack() {
        m_manager.reset();
        m_manager = std::make_unique<ScriptedManager>(m_path);
    }
    void comeBackAs(const std::string& ownName) {
        m_manager.reset();
        m_manager = std::make_unique<ScriptedManager>(m_path, m_folder / ownName);
    }

    int request(std::uint32_t command = kNoData) {
        return System::requestDevice(m_device.get(), command, {}, {});
    }

    /// A request that is answered, and comes as it should.
    void expectWorking() {
        m_manager->willAnswer(0, {0xAB});
        unsigned char answer = 0;
        EXPECT_EQ(System::requestDevice(m_device.get(), kBack, {}, {{&answer, 1}}), 0);
        EXPECT_EQ(answer, 0xAB);
        EXPECT_EQ(m_manager->lastRequest(), littleEndian({kBack, 0, 1, 0}));
    }

    std::filesystem::path m_path = m_folder / "bus";
    std::unique_ptr<ScriptedManager> m_manager = std::make_unique<ScriptedManager>(m_path);
    System::Descriptor m_device;
};

/// How many this process has open.
inline std::size_t openDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}
