#pragma once

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "support/CallScript.h"

/// Stands between the device seam and the kernel for the thread that made it: knows poll, send and recv
/// by name, and plays the kernel's driver of an I2C bus. One at a time per thread.
class KernelCalls : public CallScript {
public:
    /// One message of a transfer, as the driver was given it.
    struct Message {
        unsigned short address;
        unsigned short flags;
        unsigned short length;
        std::vector<unsigned char> sent; ///< empty for a message that is read
    };
    using Transfer = std::vector<Message>;
    /// Does a transfer; returns the number of messages done, or -1 with errno set.
    using Driver = std::function<int(i2c_rdwr_ioctl_data&)>;

    KernelCalls();
    ~KernelCalls();

    /// Answers every transfer from now on. Without one they go to the kernel.
    void setDriver(Driver driver) { m_driver = std::move(driver); }
    /// The transfers asked for, in their order.
    const std::vector<Transfer>& transfers() const { return m_transfers; }

    // For the wrappers.
    std::optional<int> onTransfer(i2c_rdwr_ioctl_data& transfer);

private:
    Driver m_driver;
    std::vector<Transfer> m_transfers;
};
