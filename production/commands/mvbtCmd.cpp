#include "commands/mvbtCmd.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <thread>
#include <utility>

namespace {

constexpr int kFailed = -1;
constexpr std::size_t kMostBytes = 247;
constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

constexpr char kWriteFailed[] = "Error during writing on Bluetooth SDIO interface\n";

void sleepFor(unsigned int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace

mvbtCmd::~mvbtCmd() {
    close();
}

int mvbtCmd::open() {
    if (checkDll())
        return 0;
    // A reader that tries to open the driver anew goes on doing so, whatever comes of this.
    auto link = m_link ? m_link : std::make_shared<BluetoothLink>();
    if (!link->openDriver())
        return kFailed;
    m_link = std::move(link);
    m_link->startReadingThread();
    return 0;
}

int mvbtCmd::close() {
    if (m_link)
        m_link->close();
    m_link.reset();
    return 0;
}

void mvbtCmd::write(int type, const void* data, int length) {
    if (!checkDll())
        return;
    m_link->clearQueue();
    if (!m_link->write(type, data, length))
        std::fputs(kWriteFailed, stderr);
}

int mvbtCmd::readnbytes(std::vector<unsigned char>& data, unsigned int timeoutMs, unsigned char count) {
    if (!checkDll())
        return kFailed;
    sleepFor(timeoutMs);
    data = m_link->fetch(std::min<std::size_t>(count, kMostBytes));
    return static_cast<int>(data.size()) + 1;
}

int mvbtCmd::read(std::vector<unsigned char>& data, unsigned int timeoutMs) {
    if (!checkDll())
        return kFailed;
    sleepFor(timeoutMs);
    data = m_link->fetch(kAll);
    return static_cast<int>(data.size());
}

bool mvbtCmd::checkDll() const {
    return m_link && m_link->isLoaded();
}

std::size_t mvbtCmd::getQueueSize() const {
    return m_link ? m_link->getQueueSize() : 0;
}
