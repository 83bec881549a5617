#include "support/PassThroughUnit.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr const char* kNodes[] = {"/dev/ser1", "/dev/NAD/AT_port", "/dev/ser3",
                                  "/dev/usbserialadapter1"};

DeviceCalls& sharedCalls() {
    static auto* const calls = new DeviceCalls;
    return *calls;
}

} // namespace

PassThroughUnit::PassThroughUnit() : m_calls(sharedCalls()) {
    for (unsigned number = 0; number < kChannels; ++number) {
        const fs::path node = kNodes[number];
        fs::create_directories(node.parent_path());
        fs::remove(node);
        fs::create_symlink(m_lines[number].path(), node);
    }
    EXPECT_EQ(comm()->setInterface(Comm::On).code, 0);
    command().setListener(&m_frontEnd);
    m_calls.forget();
}

PassThroughUnit::~PassThroughUnit() {
    for (const char* function : {"poll", "write"})
        EXPECT_FALSE(m_calls.isScripted(function)) << "scripted calls of " << function << " never came";
    for (const unsigned char number : Bytes{0, 1, 2, 3, kWlan, kBluetooth})
        command().close(number);
    command().setListener(nullptr);
}

Comm::Handle& PassThroughUnit::channel(unsigned number) {
    Comm::Handle* handle = nullptr;
    EXPECT_EQ(comm()->device(&handle, number).code, 0);
    return *handle;
}

Bytes openRequest(unsigned char channel, std::uint32_t baud, unsigned char flags) {
    return joined(joined({9, 'S', 0, channel}, bigEndian(baud)), {flags});
}

Bytes sendRequest(unsigned char channel, const Bytes& data) {
    return joined({static_cast<unsigned char>(4 + data.size()), 'S', 2, channel}, data);
}
