#pragma once

#include <cerrno>
#include <type_traits>
#include <utility>

/// Why an operation failed: the error number that it left with a result that is false, null or -1; 0
/// with any other result. It is gone then, so that the next operation has to leave its own.
template <typename Result>
int errorOf(const Result& result) {
    const int error = std::exchange(errno, 0);
    if constexpr (std::is_signed_v<Result>)
        return result == -1 ? error : 0;
    else
        return static_cast<bool>(result) ? 0 : error;
}
