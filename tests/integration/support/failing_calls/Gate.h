#pragma once

#include <dlfcn.h>

#include <cerrno>
#include <cstddef>
#include <type_traits>

#include "support/FaultPlan.h"

/// What every call into the system's library passes that this library is put in front of: whether it
/// goes wrong now, as the plan says. Any thread, and a child that has not become another program yet.
namespace Gate {

/// When a call may do nothing and be made again.
enum class Repetition {
    None,
    AfterSignal, ///< EINTR
    WhenReady    ///< EINTR, and EAGAIN where it does not wait
};

struct Errors {
    int error;
    int other; ///< 0 for none
    Repetition repetition = Repetition::None;
};

/// A function of the system's library.
class Call {
public:
    Call(const char* name, const Errors& errors)
        : m_name(name), m_errors(errors), m_original(::dlsym(RTLD_NEXT, name)) {}

    /// Whether it is to fail now, `errno` then tells why. `caller` is where it was called from, `waits`
    /// whether it would.
    bool fails(const void* caller, bool waits = true) const;

    /// The same for one that moves bytes: whether it is to move half of them.
    bool isHalved(Fault kind, const void* caller) const;

    template <typename Function>
    Function* original(Function* /*type*/) const {
        return reinterpret_cast<Function*>(m_original);
    }

private:
    int errorFor(Fault fault, bool waits) const;

    const char* m_name;
    Errors m_errors;
    void* m_original;
};

/// An allocation. Whoever makes it: they all share the memory.
bool failsForMemory();

/// -1, or null, as those functions tell a failure.
template <typename Result>
Result failure() {
    if constexpr (std::is_pointer_v<Result>)
        return nullptr;
    else
        return -1;
}

/// `function` is only there for its type: it is the one in front.
template <typename Function, typename... Arguments>
[[gnu::always_inline]] inline auto attempt(const Call& call, Function* function,
                                           Arguments... arguments) {
    using Result = std::invoke_result_t<Function*, Arguments...>;
    if (call.fails(__builtin_return_address(0)))
        return failure<Result>();
    return call.original(function)(arguments...);
}

/// The same for what is over and done with also when it fails: a closed file.
template <typename Function, typename... Arguments>
[[gnu::always_inline]] inline auto doAndAttempt(const Call& call, Function* function,
                                                Arguments... arguments) {
    using Result = std::invoke_result_t<Function*, Arguments...>;
    const Result result = call.original(function)(arguments...);
    return call.fails(__builtin_return_address(0)) ? failure<Result>() : result;
}

} // namespace Gate

#define IN_FRONT extern "C" __attribute__((visibility("default")))
