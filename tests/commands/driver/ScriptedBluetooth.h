#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// The Bluetooth driver that the code under test loads, as the test says what it does: by itself it
/// opens, waits in its reads for packets until it is closed or the thread is cancelled, and takes what
/// is written. It keeps what it was called with. What no driver must suffer fails the test: to be
/// unloaded while somebody is inside it, to be left without being closed, to be called with a handle
/// that it never gave. One at a time; any thread.
class ScriptedBluetooth {
public:
    using Bytes = std::vector<unsigned char>;
    using Clock = std::chrono::steady_clock;

    struct Opening {
        std::string path;
        int flags;
    };
    struct Write {
        int handle;
        int type;
        Bytes bytes;
        bool operator==(const Write& other) const {
            return handle == other.handle && type == other.type && bytes == other.bytes;
        }
    };

    /// The points at which it can be held up.
    enum Point { InOpen, InRead, InWrite };

    ScriptedBluetooth();
    /// Waits until it has been unloaded.
    ~ScriptedBluetooth();
    ScriptedBluetooth(const ScriptedBluetooth&) = delete;
    ScriptedBluetooth& operator=(const ScriptedBluetooth&) = delete;

    // --- What it does. ---

    /// The handles that the next openings give; without that it is their number, from 1 on.
    void willOpenAs(const std::deque<int>& handles) {
        change([&] { m_nextHandles = handles; });
    }
    void refuseToOpen(bool refused) {
        change([&] { m_refusesToOpen = refused; });
    }
    /// The next time that it is loaded, this slot of its table is empty.
    void willLack(std::size_t slot) {
        change([&] { m_missingSlot = slot; });
    }
    void willFailToRead(int times) {
        change([&] { m_failingReads = times; });
    }
    /// A packet for the next read that has no other step.
    void receive(unsigned char type, const Bytes& bytes) { receiveFor(kAnyHandle, type, bytes); }
    /// The same for a read on this handle only.
    void receiveFor(int handle, unsigned char type, const Bytes& bytes) {
        deliver({handle, type, bytes, static_cast<int>(bytes.size()), true});
    }
    /// The same with a length of its own making, and with or without bytes.
    void receiveOdd(unsigned char type, int length, bool hasBytes) {
        deliver({kAnyHandle, type, Bytes(16), length, hasBytes});
    }
    void willFailToWrite(int times) {
        change([&] { m_failingWrites = times; });
    }
    /// A read ignores that its device is closed.
    void ignoreClosing(bool ignored) {
        change([&] { m_ignoresClosing = ignored; });
    }
    /// A read never comes to a point at which its thread could be cancelled.
    void ignoreCancelling(bool ignored) {
        change([&] { m_ignoresCancelling = ignored; });
    }
    /// Who comes to this point waits there until `release`, and cannot be cancelled.
    void holdUp(Point point) {
        change([&] { m_heldUp.insert(point); });
    }
    void release(Point point) {
        change([&] { m_heldUp.erase(point); });
    }
    /// Nobody is held up any more, and reads end when their device is closed.
    void letGo();

    // --- What happened. Each `wait...` is false when the patience is exhausted. ---

    bool isLoaded() const { return now(m_loaded) > 0; }
    int loads() const { return now(m_loads); }
    int openings() const { return static_cast<int>(now(m_openings).size()); }
    Opening lastOpening() const;
    /// Handles that were closed, in their order.
    std::vector<int> closed() const { return now(m_closed); }
    std::vector<Write> writes() const { return now(m_writes); }
    /// Reads that have been begun.
    int reads() const { return now(m_reads); }
    std::vector<Clock::time_point> failedReads() const { return now(m_failedReads); }
    /// Threads that are at this point now.
    int inside(Point point) const { return static_cast<int>(now(m_inside).count(point)); }
    /// Threads that have read and have not ended.
    int readers() const { return now(m_readers); }
    /// The same at the time when it was unloaded last.
    int readersWhenUnloaded() const { return now(m_readersWhenUnloaded); }

    bool waitUntilInside(Point point, int threads = 1) const;
    bool waitUntilUnloaded() const;

    // For the hooks.
    void onLoad(void (**table)());
    void onUnload();
    int onOpen(const char* path, int flags);
    int onClose(int handle);
    int onRead(int handle, unsigned char* type, unsigned char** data, int* length);
    int onWrite(int handle, int type, const void* data, int length);
    void countInside(int more) {
        change([&] { m_insideLibrary += more; });
    }
    void countReader(int more) {
        change([&] { m_readers += more; });
    }

private:
    static constexpr int kAnyHandle = 0;

    struct Packet {
        int handle;
        unsigned char type;
        Bytes bytes;
        int length;
        bool hasBytes;
    };
    using Lock = std::unique_lock<std::mutex>;
    class Presence;

    /// Whoever waits for something looks again; not before this is done, as the driver may then be gone.
    template <typename Change>
    void change(Change change) {
        const Lock lock(m_mutex);
        change();
        m_changed.notify_all();
    }
    template <typename Field>
    Field now(const Field& field) const {
        const Lock lock(m_mutex);
        return field;
    }
    void deliver(const Packet& packet) {
        change([&] { m_packets.push_back(packet); });
    }

    std::deque<Packet>::iterator nextPacket(int handle);
    void waitForPacket(int handle);
    bool isReadOver(int handle) const;
    void passBy(Point point, Lock& lock);
    void expectKnown(int handle) const;

    mutable std::mutex m_mutex; // guards all that follows
    mutable std::condition_variable m_changed;
    std::deque<int> m_nextHandles;
    std::deque<Packet> m_packets;
    std::map<int, Bytes> m_lent; // the bytes of the packet that was read last, by handle
    bool m_refusesToOpen = false;
    std::optional<std::size_t> m_missingSlot;
    int m_failingReads = 0;
    int m_failingWrites = 0;
    bool m_ignoresClosing = false;
    bool m_ignoresCancelling = false;
    std::set<Point> m_heldUp;

    int m_loaded = 0;
    int m_loads = 0;
    std::vector<Opening> m_openings;
    std::set<int> m_known;
    std::set<int> m_open;
    std::vector<int> m_closed;
    std::vector<Write> m_writes;
    int m_reads = 0;
    std::vector<Clock::time_point> m_failedReads;
    std::multiset<Point> m_inside;
    int m_insideLibrary = 0;
    int m_readers = 0;
    int m_readersWhenUnloaded = 0;
};
