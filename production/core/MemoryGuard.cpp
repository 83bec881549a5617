#include "core/MemoryGuard.h"

#include <new>
#include <utility>

#include "platform/Memory.h"

namespace {

// What the rest of the system keeps for itself.
constexpr std::size_t kReserve = std::size_t{64} << 20;

} // namespace

void MemoryGuard::require(std::size_t bytes) {
    if (bytes < kFreeOfCheck)
        return;
    const auto available = System::availableMemory();
    if (available < kReserve || available - kReserve < bytes)
        throw std::bad_alloc();
}

void MemoryGuard::add(std::size_t bytes) {
    m_unchecked += bytes;
    if (m_unchecked < kFreeOfCheck)
        return;
    // Forgotten even if it is refused: it will not be allocated then.
    require(std::exchange(m_unchecked, 0));
}
