#pragma once

#include <cstddef>
#include <memory>

#include "platform/DriverLibrary.h"

/// The vendor's driver library for the Bluetooth side of the wireless chip, loaded, and its device,
/// open. When this ends, the device is closed and the library unloaded: no thread may be inside it by
/// then.
///
/// One thread reads while another one writes, or closes; the library has to bear that. How long its
/// calls take is its own business.
class BluetoothDriver {
public:
    /// One received packet. Its bytes belong to the library, which keeps them until the next `read` or
    /// `close`.
    struct Packet {
        unsigned char type;
        const unsigned char* bytes;
        std::size_t length;
    };

    /// Null when it cannot be had; the reason is on standard error then.
    static std::unique_ptr<BluetoothDriver> open();

    BluetoothDriver(const BluetoothDriver&) = delete;
    BluetoothDriver& operator=(const BluetoothDriver&) = delete;
    ~BluetoothDriver();

    /// Waits for a packet. False when the library fails, or says something that cannot be a packet.
    bool read(Packet& packet) const;

    bool write(int type, const void* data, int length) const;

    /// Closes the device, once, so that a `read` which waits may come back; the library stays loaded.
    void close();

private:
    /// What the library exports: six functions, of which the unnamed ones are of no use here.
    struct EntryTable {
        void (*first)();
        int (*open)(const char* path, int flags); ///< a handle, 0 on failure
        int (*close)(int handle);
        int (*read)(int handle, unsigned char* type, unsigned char** data,
                    int* length); ///< 0 on success
        void (*fifth)();
        int (*write)(int handle, int type, const void* data, int length); ///< 0 on success
    };

    BluetoothDriver(System::DriverLibrary dlhdl, const EntryTable* mvbt, int bthdl);

    static bool isComplete(const EntryTable* mvbt);

    const System::DriverLibrary m_dlhdl;
    const EntryTable* const m_mvbt;
    const int m_bthdl;
    bool m_isOpen = true; // of use to whoever closes only
};
