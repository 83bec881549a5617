#pragma once

#include <sys/syscall.h>

#include <cstdint>
#include <initializer_list>

/// All by which the status of a file is asked for on this machine.
#ifdef SYS_fstat64
inline constexpr std::initializer_list<int> kFileStatusCalls = {SYS_fstat64, SYS_fstatat64, SYS_statx};
#else
inline constexpr std::initializer_list<int> kFileStatusCalls = {SYS_fstat, SYS_newfstatat, SYS_statx};
#endif

/// All by which the position in a file is asked for on this machine.
#ifdef SYS__llseek
inline constexpr std::initializer_list<int> kSeekCalls = {SYS_lseek, SYS__llseek};
#else
inline constexpr std::initializer_list<int> kSeekCalls = {SYS_lseek};
#endif

/// From now on the calling thread, and whatever it starts, gets `error` as the result of these system
/// calls. There is no way back: call it in a process made for the purpose. Ends the process when the
/// kernel does not offer this.
void refuseSystemCalls(std::initializer_list<int> numbers, int error);

/// The same for `write`, as far as it is asked to write fewer bytes than that.
void refuseWritesBelow(std::uint32_t bytes, int error);
