#pragma once

#include <sys/stat.h>

#include "QnxTest.h"

/// The next wait is ended after `kLongestNodeWait`.
constexpr char kLimit[] = "TimerTimeout 0 0x50 null 500000000 null";

/// What the next `fstat` tells of a node.
inline void nextStatus(struct stat told) {
    FakeSystem::next("fstat",
                     {0, 0, {}, [told](void* status) { *static_cast<struct stat*>(status) = told; }});
}

inline void nextKind(mode_t kind) {
    struct stat told {};
    told.st_mode = kind;
    nextStatus(told);
}
