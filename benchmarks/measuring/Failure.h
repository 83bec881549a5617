#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace Measuring {

/// What to throw right after a system call that failed: the text and the reason in `errno`.
inline std::system_error failure(const std::string& what) {
    return {errno, std::generic_category(), what};
}

} // namespace Measuring
