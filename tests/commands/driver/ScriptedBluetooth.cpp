#include "driver/ScriptedBluetooth.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <utility>

#include "driver/BluetoothHooks.h"
#include "support/Waiting.h"

namespace {

constexpr int kFailure = -1;

std::atomic<ScriptedBluetooth*> s_current{nullptr};

/// Tells of a thread that reads, from its first read to its end.
struct Reader {
    Reader() { s_current.load()->countReader(1); }
    ~Reader() {
        if (ScriptedBluetooth* current = s_current)
            current->countReader(-1);
    }
};

/// As long as it lives, the thread cannot be cancelled.
class Uncancellable {
public:
    Uncancellable() { ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_before); }
    ~Uncancellable() { ::pthread_setcancelstate(m_before, nullptr); }
    Uncancellable(const Uncancellable&) = delete;
    Uncancellable& operator=(const Uncancellable&) = delete;

private:
    int m_before = PTHREAD_CANCEL_ENABLE;
};

} // namespace

/// A thread's being at a point, until it leaves or is cancelled there. The lock is held at both times.
class ScriptedBluetooth::Presence {
public:
    Presence(std::multiset<Point>& inside, Point point) : m_inside(inside), m_at(inside.insert(point)) {}
    ~Presence() { m_inside.erase(m_at); }
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;

private:
    std::multiset<Point>& m_inside;
    const std::multiset<Point>::iterator m_at;
};

ScriptedBluetooth::ScriptedBluetooth() {
    s_current = this;
}

ScriptedBluetooth::~ScriptedBluetooth() {
    letGo();
    EXPECT_TRUE(waitUntilUnloaded()) << "the library is still loaded";
    EXPECT_TRUE(eventually([this] { return readers() == 0; })) << "a reader has not ended";
    EXPECT_TRUE(m_open.empty()) << "a device is still open";
    s_current = nullptr;
}

void ScriptedBluetooth::letGo() {
    for (const Point point : {InOpen, InRead, InWrite})
        release(point);
    ignoreClosing(false);
    ignoreCancelling(false);
}

ScriptedBluetooth::Opening ScriptedBluetooth::lastOpening() const {
    const Lock lock(m_mutex);
    return m_openings.empty() ? Opening{"", -1} : m_openings.back();
}

bool ScriptedBluetooth::waitUntilInside(Point point, int threads) const {
    return eventually([&] { return inside(point) == threads; });
}

bool ScriptedBluetooth::waitUntilUnloaded() const {
    return eventually([this] { return !isLoaded(); });
}

void ScriptedBluetooth::passBy(Point point, Lock& lock) {
    const Uncancellable uncancellable;
    m_changed.wait(lock, [&] { return m_heldUp.count(point) == 0; });
}

void ScriptedBluetooth::expectKnown(int handle) const {
    EXPECT_EQ(m_known.count(handle), 1U) << "called with handle " << handle;
}

void ScriptedBluetooth::onLoad(void (**table)()) {
    const Lock lock(m_mutex);
    ++m_loaded;
    ++m_loads;
    if (m_missingSlot)
        table[*m_missingSlot] = nullptr;
    m_missingSlot.reset();
}

void ScriptedBluetooth::onUnload() {
    const Lock lock(m_mutex);
    --m_loaded;
    EXPECT_EQ(m_insideLibrary, 0) << "unloaded while a thread is inside";
    EXPECT_TRUE(m_open.empty()) << "unloaded with an open device";
    m_readersWhenUnloaded = m_readers;
}

int ScriptedBluetooth::onOpen(const char* path, int flags) {
    Lock lock(m_mutex);
    m_openings.push_back({path, flags});
    {
        const Presence presence(m_inside, InOpen);
        passBy(InOpen, lock);
    }
    if (m_refusesToOpen)
        return 0;
    int handle = static_cast<int>(m_openings.size());
    if (!m_nextHandles.empty()) {
        handle = m_nextHandles.front();
        m_nextHandles.pop_front();
    }
    m_known.insert(handle);
    m_open.insert(handle);
    return handle;
}

int ScriptedBluetooth::onClose(int handle) {
    change([&] {
        expectKnown(handle);
        EXPECT_EQ(m_open.erase(handle), 1U) << "handle " << handle << " is closed again";
        m_closed.push_back(handle);
    });
    return 0;
}

int ScriptedBluetooth::onRead(int handle, unsigned char* type, unsigned char** data, int* length) {
    static thread_local const Reader reader;
    Lock lock(m_mutex);
    expectKnown(handle);
    ++m_reads;
    {
        const Presence presence(m_inside, InRead);
        passBy(InRead, lock);
        waitForPacket(handle);
    }
    if (isReadOver(handle))
        return kFailure;
    if (m_failingReads > 0) {
        --m_failingReads;
        m_failedReads.push_back(Clock::now());
        return kFailure;
    }
    const auto next = nextPacket(handle);
    const Packet packet = std::move(*next);
    m_packets.erase(next);
    Bytes& lent = m_lent[handle];
    lent = packet.bytes;
    *type = packet.type;
    *data = packet.hasBytes ? lent.data() : nullptr;
    *length = packet.length;
    return 0;
}

bool ScriptedBluetooth::isReadOver(int handle) const {
    return !m_ignoresClosing && m_open.count(handle) == 0;
}

std::deque<ScriptedBluetooth::Packet>::iterator ScriptedBluetooth::nextPacket(int handle) {
    return std::find_if(m_packets.begin(), m_packets.end(), [handle](const Packet& packet) {
        return packet.handle == kAnyHandle || packet.handle == handle;
    });
}

/// At a cancellation point, which `std::condition_variable::wait` is none that a thread may leave.
void ScriptedBluetooth::waitForPacket(int handle) {
    std::optional<Uncancellable> uncancellable;
    if (m_ignoresCancelling)
        uncancellable.emplace();
    while (m_failingReads == 0 && nextPacket(handle) == m_packets.end() && !isReadOver(handle))
        ::pthread_cond_wait(m_changed.native_handle(), m_mutex.native_handle());
}

int ScriptedBluetooth::onWrite(int handle, int type, const void* data, int length) {
    Lock lock(m_mutex);
    expectKnown(handle);
    EXPECT_EQ(m_open.count(handle), 1U) << "written to a closed device";
    {
        const Presence presence(m_inside, InWrite);
        passBy(InWrite, lock);
    }
    EXPECT_EQ(m_open.count(handle), 1U) << "closed while it is written to";
    const auto* bytes = static_cast<const unsigned char*>(data);
    m_writes.push_back({handle, type, {bytes, bytes + length}});
    if (m_failingWrites == 0)
        return 0;
    --m_failingWrites;
    return kFailure;
}

extern "C" {

void bluetoothLoaded(void (**table)()) {
    s_current.load()->onLoad(table);
}

void bluetoothUnloaded() {
    // At the end of the process there may be nobody left to tell.
    if (ScriptedBluetooth* current = s_current)
        current->onUnload();
}

int bluetoothOpen(const char* path, int flags) {
    return s_current.load()->onOpen(path, flags);
}

int bluetoothClose(int handle) {
    return s_current.load()->onClose(handle);
}

int bluetoothRead(int handle, unsigned char* type, unsigned char** data, int* length) {
    return s_current.load()->onRead(handle, type, data, length);
}

int bluetoothWrite(int handle, int type, const void* data, int length) {
    return s_current.load()->onWrite(handle, type, data, length);
}

void bluetoothEnters() {
    s_current.load()->countInside(1);
}

void bluetoothLeaves() {
    s_current.load()->countInside(-1);
}

} // extern "C"
