#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "commands/BluetoothLink.h"

/// The Bluetooth side of the wireless chip as the pass-through command uses it: packets go out as they
/// are given, and what comes in waits, one packet at a time, until it is fetched. A packet waits as its
/// type and its bytes. All of it is called on the commands' thread.
class mvbtCmd {
public:
    mvbtCmd() = default;
    mvbtCmd(const mvbtCmd&) = delete;
    mvbtCmd& operator=(const mvbtCmd&) = delete;
    ~mvbtCmd();

    /// 0, also when it is open already; -1 when it cannot be had, with the reason on standard error.
    /// Takes as long as the driver does.
    int open();

    /// Always 0. A driver that takes long is closed in the background.
    int close();

    /// Drops what waits, then sends a packet. Does nothing while the driver is not loaded; a failure
    /// goes to standard error. Takes as long as the driver does.
    void write(int type, const void* data, int length);

    /// Waits, then makes `data` the bytes that have come by then: at most `count`, and 247. Returns
    /// their number plus 1; -1, with `data` as it was, while the driver is not loaded.
    int readnbytes(std::vector<unsigned char>& data, unsigned int timeoutMs, unsigned char count);

    /// The same with all bytes that have come. Returns their number, or -1.
    int read(std::vector<unsigned char>& data, unsigned int timeoutMs);

    /// Whether the driver is loaded.
    bool checkDll() const;

    /// How many bytes wait.
    std::size_t getQueueSize() const;
    bool isQueueEmpty() const { return getQueueSize() == 0; }

private:
    std::shared_ptr<BluetoothLink> m_link; // null while it is closed
};
