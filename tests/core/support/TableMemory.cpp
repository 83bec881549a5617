#include "support/TableMemory.h"

#include <atomic>
#include <new>

namespace {

std::atomic<bool> s_refused{false};

} // namespace

void refuseTableMemory(bool refused) {
    s_refused = refused;
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    if (s_refused)
        return nullptr;
    try {
        return ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    ::operator delete[](memory);
}
