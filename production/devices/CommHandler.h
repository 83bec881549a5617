#pragma once

#include <memory>
#include <string>
#include <vector>

#include "devices/CommInterface.h"
#include "runtime/Mutex.h"

class SerialLine;

/// The unit's serial lines: four numbered channels, each with a device node and, once they have been
/// switched on, a driver. Start-up sets the interfaces up before any other thread uses a channel;
/// afterwards the table does not change.
class Comm {
public:
    enum PhysicalInterface : unsigned {
        NoInterface = 0,
        FileInterface = 1,  ///< `CommSerial`
        StreamInterface = 2 ///< `CommFSerial`
    };
    enum Interface : unsigned { Off = 0, On = 1 };

    class Handle;

    static Comm* getInstance();

    Comm();
    Comm(const Comm&) = delete;
    Comm& operator=(const Comm&) = delete;
    virtual ~Comm();

    /// Chooses a channel's kind of driver, for the next time the drivers are switched on.
    DeviceResult setInterfaceTyp(unsigned channel, PhysicalInterface type);

    /// Switches the drivers of all channels on (`On`) or off (any other value). Switching off does not
    /// close devices: their users do that before.
    DeviceResult setInterface(Interface interface);

    /// The channel's handle, which lives as long as the manager. `*handle` is set on success only.
    DeviceResult device(Handle** handle, unsigned channel);

private:
    std::vector<std::unique_ptr<Handle>> m_channels;
    Interface m_interface = Off;

    static System::Mutex s_singleton_mutex;
};

/// The one manager of the process.
Comm* comm();

/// One serial channel. Any thread: each access to the device holds the channel's mutex, which is given
/// up while anybody waits for the device, so that nobody who waits holds up another.
class Comm::Handle final : public CommInterface {
public:
    Handle(const char* path, PhysicalInterface type);
    ~Handle();

    DeviceResult isOpen(bool& open) override;
    /// Refuses: a channel's device is fixed.
    DeviceResult open(const std::string& path, unsigned baud, unsigned dataBits, unsigned stopBits,
                      Parity parity) override;
    /// Opens the channel's device. A failure is reported on standard error too.
    virtual DeviceResult open(unsigned baud, unsigned dataBits, unsigned stopBits, Parity parity);
    /// The same; the last argument is ignored.
    virtual DeviceResult open(unsigned baud, unsigned dataBits, unsigned stopBits, Parity parity, int);
    DeviceResult close() override;

    /// A failure is reported on standard error too.
    DeviceResult read(unsigned& count, void* buffer, int length, unsigned timeoutMs) override;
    /// The same; `mutex` is ignored, the channel has its own.
    DeviceResult read_locked(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                             System::Mutex* mutex) override;
    /// Like `read`, but reports nothing, for a caller to whom not every end of a read is news; with
    /// time-out 0 it waits without limit for what the next arrival brings.
    DeviceResult receive(unsigned& count, void* buffer, int length, unsigned timeoutMs);
    /// What `read` reports, for such a caller.
    static void reportReadFailure();

    /// Never waits.
    DeviceResult write(const void* buffer, int length) override;
    /// Writes all of it in its turn without waiting: what the device does not take yet goes out while
    /// somebody reads or transmits. Refused (EAGAIN) while very much waits already.
    DeviceResult post(std::string bytes);
    /// The same, never refused; waits until the device has taken it, has failed or is closed:
    /// for a caller that may wait for the far end, which the dispatcher may not.
    DeviceResult transmit(std::string bytes);
    /// Neither checked nor locked: only for a channel that is known to have a driver.
    DeviceResult flush() override;

    const std::string& devicePath() const { return m_path; }

private:
    friend class Comm;

    struct ReleaseDriver {
        void operator()(CommInterface* driver) const;
    };
    using Driver = std::unique_ptr<CommInterface, ReleaseDriver>;

    SerialLine& line() const;

    System::Mutex m_mutex;
    PhysicalInterface m_type;
    Driver m_driver;
    std::string m_path;
};
