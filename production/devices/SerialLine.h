#pragma once

#include <termios.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "devices/CommInterface.h"
#include "devices/OutputQueue.h"
#include "devices/WakePipe.h"

class Deadline;

/// What the two serial drivers have in common: everything but how the device is opened, flushed and
/// closed. Not synchronised: called with the channel's mutex held, which those operations that are given
/// it give back while they wait.
///
/// The device never blocks. Whatever waits for it waits in `poll`, holds no mutex meanwhile, and ends at
/// once when the port is closed, or closed and opened again: it is answered as a port that is not open.
class SerialLine : public CommInterface {
public:
    DeviceResult isOpen(bool& open) override;
    /// Ends open with these settings, or closed; but an invalid baud rate is noticed late and leaves the
    /// device open as it was found.
    DeviceResult open(const std::string& path, unsigned baud, unsigned dataBits, unsigned stopBits,
                      Parity parity) override;
    /// Puts the device's own settings back. It is closed also when that fails. What still waits for the
    /// device is dropped.
    DeviceResult close() override;
    DeviceResult read(unsigned& count, void* buffer, int length, unsigned timeoutMs) override;
    /// A line that has gone (hang-up, pulled adapter) ends the read with the system's error number, EIO
    /// for an end of file. While it waits, it passes on what waits for the device.
    DeviceResult read_locked(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                             System::Mutex* mutex) override;
    /// Never waits. What the device does not take at once is lost, which is a success; a driver that
    /// keeps it does as `post` does.
    DeviceResult write(const void* buffer, int length) override;
    DeviceResult flush() override;
    /// The classes derived from this one close the device.
    virtual ~SerialLine() = default;

    /// Never waits: what the device does not take at once
    /// waits for it. EAGAIN when too much waits already.
    DeviceResult post(std::string bytes);

    /// Writes all of it, behind what waits already, and returns when the device has taken it, which may
    /// be never; when it fails; or when the port is closed.
    DeviceResult transmit(std::string bytes, System::Mutex* mutex);

    /// Forgets an open device without closing it.
    void abandon();

protected:
    /// The members of the class derived from this one in which it keeps them.
    SerialLine(std::string& path, termios& savedAttributes)
        : m_path(path), m_savedAttributes(savedAttributes) {}

    /// Opens the device, non-blocking, and keeps it. False and errno on failure.
    virtual bool openDevice(const char* path) = 0;
    /// -1 when closed.
    virtual int descriptor() const = 0;
    virtual void closeDevice() = 0;
    virtual void forgetDevice() = 0;
    /// False and errno on failure.
    virtual bool flushDevice() = 0;
    /// How many bytes may wait for the device before more
    /// are refused; 0 in a driver whose writes keep none.
    virtual std::size_t mostWaiting() const = 0;

private:
    bool isDeviceOpen() const { return descriptor() >= 0; }
    DeviceResult systemError(const char* lead) const noexcept;
    DeviceResult closeAfter(const char* lead);
    DeviceResult setUp(unsigned baud, tcflag_t frame);
    bool setAttributes(const termios& attributes) const;
    void endOpening();

    std::optional<DeviceResult> waitFor(short events, const Deadline& deadline, System::Mutex* mutex,
                                        short& ready);
    DeviceResult readUpTo(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                          System::Mutex* mutex);
    DeviceResult drainUpTo(std::uint64_t end, System::Mutex* mutex);
    ssize_t writeOnce(std::string_view bytes);
    bool drainOnce();
    void handOn();

    std::string& m_path;
    termios& m_savedAttributes;
    OutputQueue m_output;
    // While the device is open; who waits for it holds on
    // to it, which tells this opening from a later one.
    std::shared_ptr<WakePipe> m_opening;
};
