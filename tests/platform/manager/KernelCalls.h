#pragma once

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <vector>

/// Stands between the device seam and the kernel for the thread that made it: lets chosen calls end as
/// the test says, and plays the kernel's driver of an I2C bus. What the script did not use fails the
/// test. One at a time per thread.
class KernelCalls {
public:
    enum Function { Poll, Send, Receive };

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
    KernelCalls(const KernelCalls&) = delete;
    KernelCalls& operator=(const KernelCalls&) = delete;

    /// The next call fails, without being made.
    void failNext(Function function, int error);
    /// The next wait reports that its time is over.
    void timeOutNext();
    /// The next call is made.
    void passNext(Function function);

    /// Answers every transfer from now on. Without one they go to the kernel.
    void setDriver(Driver driver) { m_driver = std::move(driver); }
    /// The transfers asked for, in their order.
    const std::vector<Transfer>& transfers() const { return m_transfers; }

    /// How long the waits were allowed to take, in ms.
    const std::vector<int>& pollLimits() const { return m_pollLimits; }

    // For the wrappers.
    std::optional<int> next(Function function);
    std::optional<int> onTransfer(i2c_rdwr_ioctl_data& transfer);
    void notePollLimit(int limit) { m_pollLimits.push_back(limit); }

private:
    /// Runs in place of a call; without a result the call is made.
    using Step = std::function<std::optional<int>()>;

    std::map<Function, std::deque<Step>> m_script;
    Driver m_driver;
    std::vector<Transfer> m_transfers;
    std::vector<int> m_pollLimits;
};
