#pragma once

#include <termios.h>

#include <optional>
#include <string>

#include "devices/CommInterface.h"

/// What the two serial drivers have in common: everything but how the device is opened, flushed and
/// closed. Not synchronised: called with the channel's mutex held, which `read_locked` gives back while
/// it waits for data.
class SerialLine : public CommInterface {
public:
    DeviceResult isOpen(bool& open) override;
    /// Ends open with these settings, or closed; but an invalid baud rate is noticed late and leaves the
    /// device open as it was found.
    DeviceResult open(const std::string& path, unsigned baud, unsigned dataBits, unsigned stopBits,
                      Parity parity) override;
    /// Puts the device's own settings back. It is closed also when that fails.
    DeviceResult close() override;
    DeviceResult read(unsigned& count, void* buffer, int length, unsigned timeoutMs) override;
    /// A line that has gone (hang-up, pulled adapter) ends the read with the system's error number, EIO
    /// for an end of file.
    DeviceResult read_locked(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                             System::Mutex* mutex) override;
    DeviceResult write(const void* buffer, int length) override;
    DeviceResult flush() override;
    /// The classes derived from this one close the device.
    virtual ~SerialLine() = default;

    /// Forgets an open device without closing it.
    void abandon();

protected:
    SerialLine() = default;

    /// Opens the device and keeps it. False and errno on failure.
    virtual bool openDevice(const char* path) = 0;
    /// -1 when closed.
    virtual int descriptor() const = 0;
    virtual void closeDevice() = 0;
    virtual void forgetDevice() = 0;
    /// False and errno on failure.
    virtual bool flushDevice() = 0;

private:
    bool isDeviceOpen() const { return descriptor() >= 0; }
    DeviceResult systemError(const char* lead) const;
    DeviceResult closeAfter(const char* lead);
    std::optional<DeviceResult> waitForData(unsigned timeoutMs, System::Mutex* mutex, bool& arrived);

    std::string m_path;
    unsigned m_openings = 0; // tells a device from another one that got its descriptor number
    termios m_savedAttributes{};
};
