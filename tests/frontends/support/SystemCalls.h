#pragma once

#include <cstddef>

/// Lets system calls of the code under test fail, and notes what threads are made with. Any thread.
namespace SystemCalls {

/// How many of the next calls of `setsockopt` fail with EINVAL.
void failSocketOptions(int calls);
/// How many of the next attempts to make a thread with attributes fail with EAGAIN.
void failThreads(int calls);

/// How many of the next calls of `send` fail with this error number.
void failSends(int calls, int error);

/// Of the last attempt to make a thread with attributes.
struct ThreadMade {
    int detachState;
    std::size_t guardBytes;
    std::size_t stackBytes;
};
ThreadMade lastThread();
int threadAttempts();

} // namespace SystemCalls
