#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "wire/Descriptor.h"

namespace headunit {

/// One opened Bluetooth chip, as its driver library has it: a connection to the chip's node for what
/// goes to the chip and another one for what comes from it, so that nobody waits for the other. Any
/// thread, but one at a time reads.
class DriverLink {
public:
    /// Null, and errno tells why, when there is no chip or it refuses.
    static std::unique_ptr<DriverLink> open(const char* path);

    DriverLink(System::Descriptor writing, System::Descriptor reading)
        : m_writing(std::move(writing)), m_reading(std::move(reading)) {}

    /// Blocks until the chip has taken the packet. False, with errno, when it has not.
    bool write(unsigned char type, std::string_view bytes);

    /// Blocks until the chip has something to say: the packet's type and its bytes, which stay here
    /// until the next read. Empty, with errno, when that failed.
    std::string_view read();

    /// Lets reads and writes fail, also those that wait.
    void hangUp() const;

private:
    System::Descriptor m_writing;
    System::Descriptor m_reading;
    std::mutex m_writeLock; ///< held from a request on m_writing to its answer
    std::string m_packet;   ///< of the last read
};

} // namespace headunit
