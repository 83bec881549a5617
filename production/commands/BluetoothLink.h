#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "commands/BluetoothDriver.h"

/// The Bluetooth link from its opening to its closing: the driver, a thread that reads from it, and the
/// one packet that waits to be fetched. The commands' thread opens, writes, fetches and closes. The
/// reader reads whenever nothing waits, and opens the driver anew when reading fails.
///
/// A driver may wait for a packet for as long as it likes. That holds up nobody: whoever is inside the
/// driver keeps it, and this object, alive.
class BluetoothLink : public std::enable_shared_from_this<BluetoothLink> {
public:
    /// Opens the driver, unless it is, and drops what waits. False when it cannot be had; the reason is
    /// on standard error then.
    bool openDriver();

    /// Once the driver is open. Does nothing when the reader runs.
    void startReadingThread();

    /// Ends the reader, then closes the driver and unloads it; the last thing that is called. A driver
    /// that does not come back in time is left to a thread of its own.
    void close();

    /// False while there is no driver, as while it is being opened anew.
    bool isLoaded() const;

    /// False when the driver fails.
    bool write(int type, const void* data, int length);

    /// Takes at most that many of the bytes that wait.
    std::vector<unsigned char> fetch(std::size_t most);
    std::size_t getQueueSize() const; ///< in bytes
    void clearQueue();

private:
    void readingThread();
    bool waitUntilFetched(); ///< false when the link is being closed
    bool isClosing() const;
    bool readPacket();
    void reopen();
    void pause();
    void replaceDriver(std::unique_ptr<BluetoothDriver> driver);
    void stopReadingThread();

    std::mutex
        m_driverLock; // held while the driver is replaced, and while it writes; taken before m_lock
    std::unique_ptr<BluetoothDriver> m_driver;

    mutable std::mutex m_lock; // never held inside the driver; guards all that follows but the thread
    std::condition_variable m_changed;
    // The driver, for the reader. It needs no lock inside: nobody else replaces an open driver while it
    // runs.
    BluetoothDriver* m_current = nullptr;
    std::deque<unsigned char> m_fifo;
    bool m_isReading = false; // the reader is inside the driver
    bool m_isClosing = false;
    bool m_isReleased = false; // closed under the reader: what it comes back with is not to be touched
    bool m_isClosed = false;

    std::thread m_reader;
};
