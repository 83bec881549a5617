#include <dlfcn.h>
#include <gmock/gmock.h>

#include <chrono>
#include <optional>
#include <thread>

#include "support/Peers.h"
#include "support/Waiting.h"

namespace headunit_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::HasSubstr;

/// The driver library as a program finds it: six slots, reached by name.
class Library {
public:
    Library() : m_library(::dlopen(BLUETOOTH_DRIVER, RTLD_NOW)) {
        if (m_library != nullptr)
            m_slots = static_cast<Slot*>(::dlsym(m_library, "mvbt_drv_entry"));
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() {
        if (m_library != nullptr)
            ::dlclose(m_library);
    }

    bool isLoaded() const { return m_slots != nullptr; }

    int open(const std::string& path) const {
        return reinterpret_cast<int (*)(const char*, int)>(m_slots[1])(path.c_str(), 0);
    }
    int close(int handle) const { return reinterpret_cast<int (*)(int)>(m_slots[2])(handle); }
    int read(int handle, unsigned char* type, unsigned char** data, int* length) const {
        using Read = int (*)(int, unsigned char*, unsigned char**, int*);
        return reinterpret_cast<Read>(m_slots[3])(handle, type, data, length);
    }
    int write(int handle, int type, const std::string& bytes) const {
        return writeRaw(handle, type, bytes.data(), static_cast<int>(bytes.size()));
    }
    int writeRaw(int handle, int type, const void* data, int length) const {
        using Write = int (*)(int, int, const void*, int);
        return reinterpret_cast<Write>(m_slots[5])(handle, type, data, length);
    }

private:
    using Slot = void (*)();

    void* m_library;
    Slot* m_slots = nullptr;
};

const std::string kReset("\x03\x0C\x00", 3);
const std::string kResetEvent("\x04\x0E\x04\x01\x03\x0C\x00", 7);

class BluetoothDriverTest : public PeersTest {
protected:
    void SetUp() override { ASSERT_TRUE(m_driver.isLoaded()) << ::dlerror(); }

    int open() const { return m_driver.open(node("/dev/sdio0")); }

    /// The next packet, its type first. Nothing when the read failed.
    std::optional<std::string> read(int handle) const {
        unsigned char type = 0;
        unsigned char* data = nullptr;
        int length = -1;
        if (m_driver.read(handle, &type, &data, &length) != 0)
            return std::nullopt;
        return std::string(1, static_cast<char>(type)) +
               std::string(reinterpret_cast<const char*>(data), static_cast<std::size_t>(length));
    }

    bool stateHas(const std::string& text) const {
        return ask("state").text.find(text) != std::string::npos;
    }

    Library m_driver;
};

TEST_F(BluetoothDriverTest, ExchangesPacketsWithTheChip) {
    const int handle = open();
    ASSERT_NE(handle, 0);
    ASSERT_EQ(m_driver.write(handle, 1, kReset), 0);
    EXPECT_EQ(read(handle), kResetEvent);
    ASSERT_EQ(m_driver.write(handle, 1, std::string("\x09\x10\x00", 3)), 0);
    EXPECT_EQ(read(handle), std::string("\x04\x0E\x0A\x01\x09\x10\x00\x02\x87\x00\x00\x00\x02", 13));
    ASSERT_EQ(m_driver.write(handle, 1, std::string("\x01\x04\x00", 3)), 0);
    EXPECT_EQ(read(handle), std::string("\x04\x0F\x04\x01\x01\x01\x04", 7));
    EXPECT_THAT(
        ask("state").text,
        HasSubstr("bluetooth /dev/sdio0 on open address 02:00:00:00:87:02 commands 3 unsaid 0\n"));
    EXPECT_EQ(m_driver.close(handle), 0);
    EXPECT_TRUE(eventually([&] { return stateHas("bluetooth /dev/sdio0 on closed "); }));
}

TEST_F(BluetoothDriverTest, BringsWhatTheChipSaysUnasked) {
    EXPECT_EQ(ask("bluetooth send 0401").text, "nobody has the bluetooth chip open");
    const int handle = open();
    tell("bluetooth send 04FF020102");
    tell("bluetooth send 02");
    EXPECT_EQ(read(handle), "\x04\xFF\x02\x01\x02");
    EXPECT_EQ(read(handle), "\x02") << "a packet without a byte";
    std::optional<std::string> waited;
    std::thread reader([&] { waited = read(handle); });
    tell("bluetooth send 0310");
    reader.join();
    EXPECT_EQ(waited, "\x03\x10");
    m_driver.close(handle);
}

TEST_F(BluetoothDriverTest, ForgetsWhatWasThereBeforeItOpened) {
    const int first = open();
    tell("bluetooth send 0401");
    EXPECT_EQ(m_driver.close(first), 0);
    const int second = open();
    ASSERT_NE(second, 0);
    EXPECT_NE(second, first);
    ASSERT_EQ(m_driver.write(second, 1, kReset), 0);
    EXPECT_EQ(read(second), kResetEvent);
    m_driver.close(second);
}

TEST_F(BluetoothDriverTest, FailsAsItIsTold) {
    tell("bluetooth fail open 2");
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(open(), 0);
    const int handle = open();
    ASSERT_NE(handle, 0);
    tell("bluetooth fail write");
    EXPECT_NE(m_driver.write(handle, 1, kReset), 0);
    tell("bluetooth fail read 2");
    EXPECT_EQ(read(handle), std::nullopt);
    EXPECT_EQ(read(handle), std::nullopt);
    EXPECT_EQ(m_driver.write(handle, 1, kReset), 0);
    EXPECT_EQ(read(handle), kResetEvent);
    m_driver.close(handle);
}

/// What ends a read that waits.
class WaitingRead : public BluetoothDriverTest, public testing::WithParamInterface<const char*> {};

TEST_P(WaitingRead, IsEnded) {
    const int handle = open();
    ASSERT_EQ(m_driver.write(handle, 1, kReset), 0);
    ASSERT_EQ(read(handle), kResetEvent);
    std::optional<std::string> waited = "not read";
    std::thread reader([&] { waited = read(handle); });
    const std::string how = GetParam();
    if (how == "close") {
        EXPECT_EQ(m_driver.close(handle), 0);
    } else {
        tell(how);
    }
    reader.join();
    EXPECT_EQ(waited, std::nullopt);
    m_driver.close(handle);
}

INSTANTIATE_TEST_SUITE_P(Ways, WaitingRead,
                         testing::Values("close", "bluetooth fail read", "bluetooth manager off"));

TEST_F(BluetoothDriverTest, StallsAsItIsTold) {
    const int handle = open();
    tell("bluetooth silent on");
    ASSERT_EQ(m_driver.write(handle, 1, kReset), 0);
    EXPECT_TRUE(stateHas(" commands 1 unsaid 0\n"));
    tell("bluetooth silent off");
    tell("bluetooth late 300");
    const auto start = steady_clock::now();
    EXPECT_EQ(m_driver.write(handle, 1, kReset), 0);
    EXPECT_GE(steady_clock::now() - start, milliseconds(300));
    EXPECT_EQ(read(handle), kResetEvent);
    tell("bluetooth late 0");
    m_driver.close(handle);
}

TEST_F(BluetoothDriverTest, FindsNoChip) {
    EXPECT_EQ(m_driver.open(node("/dev/none")), 0);
    EXPECT_EQ(m_driver.open("/none/such"), 0);
    tell("bluetooth manager off");
    EXPECT_EQ(open(), 0);
    tell("bluetooth manager on");
    EXPECT_NE(open(), 0);
}

TEST_F(BluetoothDriverTest, RefusesCallsThatMakeNoSense) {
    const int handle = open();
    EXPECT_NE(m_driver.writeRaw(handle, 1, "x", -1), 0);
    EXPECT_NE(m_driver.write(handle, 1, std::string(65537, 'x')), 0);
    EXPECT_EQ(m_driver.write(handle, 1, std::string(65536, 'x')), 0);
    EXPECT_EQ(m_driver.close(handle), 0);
    EXPECT_NE(m_driver.close(handle), 0);
    EXPECT_NE(m_driver.write(handle, 1, kReset), 0);
    EXPECT_EQ(read(handle), std::nullopt);
    EXPECT_NE(m_driver.close(0), 0);
}

} // namespace
} // namespace headunit_test
