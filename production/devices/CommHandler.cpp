#include "devices/CommHandler.h"

#include <utility>

#include "core/Diagnostics.h"
#include "devices/CommFSerial.h"
#include "devices/CommSerial.h"
#include "runtime/OnlyObject.h"

namespace {

constexpr char kNoInterface[] = "No Interface defined";
constexpr char kNoHandle[] = "Handle does not exist";
constexpr char kNotImplemented[] = "Not implemented";
constexpr char kNotInitialized[] = "Device is not Initialized";
constexpr char kFixedPath[] = "This open Interface can't be used with Comm::Handle";
constexpr char kCouldNotOpen[] = "Could not open the device: %s";
constexpr char kReadFailed[] = "Read locked error in CommHandler";

DeviceResult notInitialized() {
    return {DeviceError::kNotUsable, kNotInitialized};
}

} // namespace

System::Mutex Comm::s_singleton_mutex(System::Mutex::Normal);

Comm* Comm::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new Comm; });
}

Comm* comm() {
    return Comm::getInstance();
}

Comm::Comm() {
    m_channels.push_back(std::make_unique<Handle>("/dev/ser1", FileInterface));
    m_channels.push_back(std::make_unique<Handle>("/dev/NAD/AT_port", FileInterface));
    m_channels.push_back(std::make_unique<Handle>("/dev/ser3", FileInterface));
    m_channels.push_back(std::make_unique<Handle>("/dev/usbserialadapter1", StreamInterface));
}

Comm::~Comm() {
    setInterface(Off);
}

DeviceResult Comm::setInterfaceTyp(unsigned channel, PhysicalInterface type) {
    if (channel >= m_channels.size())
        return {DeviceError::kNoSuchChannel, kNoHandle};
    m_channels[channel]->m_type = type;
    return {};
}

DeviceResult Comm::setInterface(Interface interface) {
    if (interface == m_interface)
        return {};
    for (const auto& channel : m_channels) {
        channel->m_driver.reset();
        if (interface != On)
            continue;
        switch (channel->m_type) {
            case NoInterface:
                return {DeviceError::kNotUsable, kNotImplemented};
            case FileInterface:
                channel->m_driver.reset(new CommSerial);
                break;
            case StreamInterface:
                channel->m_driver.reset(new CommFSerial);
                break;
        }
    }
    m_interface = interface;
    return {};
}

DeviceResult Comm::device(Handle** handle, unsigned channel) {
    if (m_interface == Off)
        return {DeviceError::kNotUsable, kNoInterface};
    if (channel >= m_channels.size())
        return {DeviceError::kNoSuchChannel, kNoHandle};
    *handle = m_channels[channel].get();
    return {};
}

Comm::Handle::Handle(const char* path, PhysicalInterface type)
    : m_mutex(System::Mutex::Normal), m_type(type), m_path(path) {}

Comm::Handle::~Handle() = default;

void Comm::Handle::ReleaseDriver::operator()(CommInterface* driver) const {
    auto* line = static_cast<SerialLine*>(driver);
    line->abandon();
    delete line;
}

/// All drivers are of this class.
SerialLine& Comm::Handle::line() const {
    return static_cast<SerialLine&>(*m_driver);
}

DeviceResult Comm::Handle::isOpen(bool& open) {
    if (!m_driver)
        return notInitialized();
    const System::Lock lock(m_mutex);
    return m_driver->isOpen(open);
}

DeviceResult Comm::Handle::open(const std::string&, unsigned, unsigned, unsigned, Parity) {
    return {DeviceError::kNotUsable, kFixedPath};
}

DeviceResult Comm::Handle::open(unsigned baud, unsigned dataBits, unsigned stopBits, Parity parity) {
    if (!m_driver)
        return notInitialized();
    DeviceResult result;
    {
        const System::Lock lock(m_mutex);
        result = m_driver->open(m_path, baud, dataBits, stopBits, parity);
    }
    if (result.failed())
        printDiagnostic(kCouldNotOpen, result.message.c_str());
    return result;
}

DeviceResult Comm::Handle::open(unsigned baud, unsigned dataBits, unsigned stopBits, Parity parity,
                                int) {
    return open(baud, dataBits, stopBits, parity);
}

DeviceResult Comm::Handle::close() {
    if (!m_driver)
        return notInitialized();
    const System::Lock lock(m_mutex);
    return m_driver->close();
}

DeviceResult Comm::Handle::read(unsigned& count, void* buffer, int length, unsigned timeoutMs) {
    return read_locked(count, buffer, length, timeoutMs, nullptr);
}

DeviceResult Comm::Handle::read_locked(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                                       System::Mutex*) {
    if (!m_driver)
        return notInitialized();
    unsigned received = 0;
    DeviceResult result = receive(received, buffer, length, timeoutMs);
    if (result.failed())
        reportReadFailure();
    else
        count = received;
    return result;
}

DeviceResult Comm::Handle::receive(unsigned& count, void* buffer, int length, unsigned timeoutMs) {
    if (!m_driver)
        return notInitialized();
    const System::Lock lock(m_mutex);
    return m_driver->read_locked(count, buffer, length, timeoutMs, &m_mutex);
}

void Comm::Handle::reportReadFailure() {
    printDiagnostic(kReadFailed);
}

DeviceResult Comm::Handle::write(const void* buffer, int length) {
    if (!m_driver)
        return notInitialized();
    const System::Lock lock(m_mutex);
    return m_driver->write(buffer, length);
}

DeviceResult Comm::Handle::post(std::string bytes) {
    if (!m_driver)
        return notInitialized();
    const System::Lock lock(m_mutex);
    return line().post(std::move(bytes));
}

DeviceResult Comm::Handle::transmit(std::string bytes) {
    if (!m_driver)
        return notInitialized();
    const System::Lock lock(m_mutex);
    return line().transmit(std::move(bytes), &m_mutex);
}

DeviceResult Comm::Handle::flush() {
    return m_driver->flush();
}
