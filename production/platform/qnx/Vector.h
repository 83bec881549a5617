#pragma once

#include <sys/neutrino.h>

#include <vector>

namespace System {

/// Send or reply parts as messages take them: addresses and sizes of what the parts own, in their order.
template <typename Part>
std::vector<iov_t> vectorOf(const std::vector<Part>& parts) {
    std::vector<iov_t> vector(parts.size());
    for (std::size_t at = 0; at < parts.size(); ++at) {
        // One type serves both directions; nothing is written through an entry that is sent.
        SETIOV(&vector[at], const_cast<void*>(parts[at].bytes), parts[at].size);
    }
    return vector;
}

} // namespace System
