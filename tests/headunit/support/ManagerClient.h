#pragma once

#include <optional>
#include <string>

#include "wire/Descriptor.h"

namespace headunit_test {

/// A connection to a device manager's socket.
class ManagerClient {
public:
    /// To the node of this name in this folder of the host.
    ManagerClient(const std::string& folder, const std::string& name);

    bool isOpen() const { return static_cast<bool>(m_socket); }
    void close() { m_socket.reset(); }

    bool send(const std::string& packet) const;

    /// Waits no longer than so many milliseconds.
    bool hasAnswer(int longest) const;

    /// Nothing when the manager has hung up or a deadline passed.
    std::optional<std::string> receive() const;

    std::optional<std::string> ask(const std::string& packet) const;

private:
    System::Descriptor m_socket;
};

} // namespace headunit_test
