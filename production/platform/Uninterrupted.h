#pragma once

#include <cerrno>

namespace System {

/// Makes a system call that may be repeated, again for as long as signals interrupt it.
template <typename Call>
auto uninterrupted(const Call& call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

} // namespace System
