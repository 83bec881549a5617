// The message to an interface's driver where no manager stands for it: the kernel's private request.
#include "platform/NetworkStack.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "support/DeviceControl.h"

namespace {

constexpr unsigned long kHostCommand = SIOCDEVPRIVATE + 1;
constexpr char kInterface[] = "nobody0";

/// The kernel's driver: the data become upper-case.
struct Driver {
    std::vector<int> errors; ///< of the next requests
    std::vector<std::string> interfaces;
    std::size_t size = 0; ///< of the data
};

Driver* s_driver = nullptr;

int onRequest(ifreq& request) {
    s_driver->interfaces.emplace_back(request.ifr_name);
    if (!s_driver->errors.empty()) {
        errno = s_driver->errors.front();
        s_driver->errors.erase(s_driver->errors.begin());
        return -1;
    }
    for (std::size_t at = 0; at < s_driver->size; ++at)
        request.ifr_data[at] = static_cast<char>(request.ifr_data[at] - 'a' + 'A');
    return 0;
}

class NetworkStackTest : public ::testing::Test {
protected:
    NetworkStackTest() { s_driver = &m_driver; }
    ~NetworkStackTest() override { s_driver = nullptr; }

    int message() {
        m_driver.size = m_data.size();
        return System::messageInterface(m_socket.get(), kInterface,
                                        {{m_header.data(), m_header.size()},
                                         {m_request.data(), m_request.size()},
                                         {m_data.data(), m_data.size()}});
    }

    Driver m_driver;
    System::Descriptor m_socket = System::openDatagramSocket();
    std::string m_header = "header";
    std::string m_request = "request";
    std::string m_data = "data";
};

} // namespace

std::optional<int> onDeviceControl(int, unsigned long request, void* argument) {
    if (s_driver == nullptr || request != kHostCommand)
        return std::nullopt;
    return onRequest(*static_cast<ifreq*>(argument));
}

TEST_F(NetworkStackTest, TheSocketIsADatagramSocketOfNoChild) {
    ASSERT_TRUE(m_socket);
    int type = 0;
    socklen_t size = sizeof type;
    ASSERT_EQ(::getsockopt(m_socket.get(), SOL_SOCKET, SO_TYPE, &type, &size), 0);
    EXPECT_EQ(type, SOCK_DGRAM);
    EXPECT_NE(::fcntl(m_socket.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(NetworkStackTest, TheKernelsDriverWorksOnTheData) {
    EXPECT_EQ(message(), 0);
    EXPECT_EQ(m_data, "DATA");
    EXPECT_EQ(m_header, "header");
    EXPECT_EQ(m_request, "request");
    EXPECT_EQ(m_driver.interfaces, std::vector<std::string>{kInterface});
}

TEST_F(NetworkStackTest, WhatItFailsWithComesBackNegative) {
    for (const int error : {EPERM, EIO, EOPNOTSUPP, EINTR}) {
        m_driver.errors = {error};
        EXPECT_EQ(message(), -error);
        EXPECT_EQ(errno, error);
        EXPECT_EQ(m_data, "data");
    }
    EXPECT_EQ(m_driver.interfaces.size(), 4U) << "none is repeated";
}

TEST_F(NetworkStackTest, WithoutSuchAnInterfaceThereIsNoDriver) {
    s_driver = nullptr;
    EXPECT_EQ(message(), -ENODEV);
}
