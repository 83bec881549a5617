#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/AbstractListener.h"

/// Sends lines to one station.
class NetListenerAsycSend : public AbstractListener {
public:
    /// The socket stays the caller's.
    explicit NetListenerAsycSend(int socket);

    void threadLoop(System::Thread*) override {}

    /// Frames `text` as STX, "#", text, ETX, LF and sends it. Waits until the peer's system has taken
    /// all of it, or the connection has failed.
    void asyncSend(std::string& text) override;
    /// Binary frames cannot travel on this link: dropped.
    void asyncSend(std::vector<unsigned char>& frame) override;
    int getDeviceListNumber() override { return 0; }

protected:
    /// Sends with these flags of `send`. Returns how many bytes need no further attempt: all, unless the
    /// flags forbid to wait.
    std::size_t send(std::string_view bytes, int flags) const;

private:
    int m_socket;
};
