#include "commands/BluetoothLink.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <system_error>
#include <utility>

#include "core/Diagnostics.h"

namespace {

constexpr std::chrono::milliseconds kRetryPause{500};
// What a reader inside the driver is given to come back by itself, before the device is closed under it.
constexpr std::chrono::milliseconds kGrace{20};
// What the commands' thread waits for a driver to be closed.
constexpr std::chrono::seconds kClosingPatience{2};

constexpr char kNoDriver[] = "No driver dll for mvbt found";
constexpr char kReadFailed[] = "mvbt_read failed, the reading thread could not read mvbt";
constexpr char kReopening[] = "Trying to close and reopen the interface";
constexpr char kNoThread[] = "Could not create the reading thread, returncode %d\n";

} // namespace

bool BluetoothLink::openDriver() {
    const std::lock_guard<std::mutex> driverLock(m_driverLock);
    if (m_driver)
        return true;
    replaceDriver(BluetoothDriver::open());
    return m_driver != nullptr;
}

void BluetoothLink::replaceDriver(std::unique_ptr<BluetoothDriver> driver) {
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_current = driver.get();
        m_fifo.clear();
    }
    m_changed.notify_all();
    m_driver = std::move(driver);
}

void BluetoothLink::startReadingThread() {
    if (m_reader.joinable())
        return;
    try {
        m_reader = std::thread([self = shared_from_this()] { self->readingThread(); });
    } catch (const std::system_error& failure) {
        std::fprintf(stderr, kNoThread, failure.code().value());
    }
}

void BluetoothLink::readingThread() {
    if (!isLoaded()) {
        printDiagnostic(kNoDriver);
        return;
    }
    while (waitUntilFetched()) {
        if (readPacket())
            continue;
        // A driver that was closed under the reader has failed by that.
        if (isClosing())
            return;
        printDiagnostic(kReadFailed);
        printDiagnostic(kReopening);
        reopen();
        pause();
    }
}

bool BluetoothLink::waitUntilFetched() {
    std::unique_lock<std::mutex> lock(m_lock);
    m_changed.wait(lock, [this] { return m_isClosing || m_fifo.empty(); });
    return !m_isClosing;
}

bool BluetoothLink::isClosing() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_isClosing;
}

bool BluetoothLink::readPacket() {
    BluetoothDriver* driver = nullptr;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        driver = m_isClosing ? nullptr : m_current;
        m_isReading = driver != nullptr;
    }
    if (driver == nullptr)
        return false;
    BluetoothDriver::Packet packet{};
    const bool isRead = driver->read(packet);
    const std::lock_guard<std::mutex> lock(m_lock);
    m_isReading = false;
    m_changed.notify_all();
    if (!isRead || m_isReleased)
        return false;
    m_fifo.push_back(packet.type);
    m_fifo.insert(m_fifo.end(), packet.bytes, packet.bytes + packet.length);
    return true;
}

void BluetoothLink::reopen() {
    {
        // A write that runs comes to its end first.
        const std::lock_guard<std::mutex> driverLock(m_driverLock);
        replaceDriver(nullptr);
    }
    openDriver();
}

void BluetoothLink::pause() {
    std::unique_lock<std::mutex> lock(m_lock);
    m_changed.wait_for(lock, kRetryPause, [this] { return m_isClosing; });
}

void BluetoothLink::close() {
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_isClosing = true;
    }
    m_changed.notify_all();
    try {
        std::thread([self = shared_from_this()] { self->stopReadingThread(); }).detach();
    } catch (const std::system_error&) {
        stopReadingThread();
    }
    std::unique_lock<std::mutex> lock(m_lock);
    m_changed.wait_for(lock, kClosingPatience, [this] { return m_isClosed; });
}

void BluetoothLink::stopReadingThread() {
    BluetoothDriver* waiting = nullptr;
    {
        std::unique_lock<std::mutex> lock(m_lock);
        m_changed.wait_for(lock, kGrace, [this] { return !m_isReading; });
        m_isReleased = m_isReading;
        waiting = m_isReading ? m_current : nullptr;
    }
    if (waiting != nullptr)
        waiting->close();
    if (m_reader.joinable())
        m_reader.join();
    {
        const std::lock_guard<std::mutex> driverLock(m_driverLock);
        replaceDriver(nullptr);
    }
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_isClosed = true;
    }
    m_changed.notify_all();
}

bool BluetoothLink::isLoaded() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_current != nullptr;
}

bool BluetoothLink::write(int type, const void* data, int length) {
    const std::lock_guard<std::mutex> driverLock(m_driverLock);
    return m_driver && m_driver->write(type, data, length);
}

std::vector<unsigned char> BluetoothLink::fetch(std::size_t most) {
    std::vector<unsigned char> bytes;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        const auto end = m_fifo.begin() + static_cast<std::ptrdiff_t>(std::min(most, m_fifo.size()));
        bytes.assign(m_fifo.begin(), end);
        m_fifo.erase(m_fifo.begin(), end);
    }
    m_changed.notify_all();
    return bytes;
}

std::size_t BluetoothLink::getQueueSize() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_fifo.size();
}

void BluetoothLink::clearQueue() {
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_fifo.clear();
    }
    m_changed.notify_all();
}
