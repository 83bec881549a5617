#include "core/MemoryGuard.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>

#include "platform/Memory.h"

namespace {

// Where a size has 32 bits, the machine may have more; nobody gets it there, whatever is granted.
constexpr std::size_t kMoreThanAnyMachineHas = std::numeric_limits<std::size_t>::max();

} // namespace

TEST(MemoryGuardTest, GrantsWhatIsThere) {
    ASSERT_GT(System::availableMemory(), std::uint64_t{256} << 20);
    EXPECT_NO_THROW(MemoryGuard::require(0));
    EXPECT_NO_THROW(MemoryGuard::require(MemoryGuard::kFreeOfCheck));
}

TEST(MemoryGuardTest, RefusesWhatIsNotThere) {
    EXPECT_THROW(MemoryGuard::require(kMoreThanAnyMachineHas), std::bad_alloc);
    EXPECT_THROW(MemoryGuard::require(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
}

TEST(MemoryGuardTest, KeepsAReserveForTheRestOfTheSystem) {
    constexpr std::size_t kReserve = std::size_t{64} << 20;
    const auto available = static_cast<std::size_t>(System::availableMemory());
    EXPECT_THROW(MemoryGuard::require(available - kReserve / 2), std::bad_alloc);
}

TEST(MemoryGuardTest, AddsSmallAmountsUp) {
    MemoryGuard guard;
    EXPECT_NO_THROW(guard.add(1));
    EXPECT_NO_THROW(guard.add(MemoryGuard::kFreeOfCheck));
    EXPECT_THROW(guard.add(kMoreThanAnyMachineHas), std::bad_alloc);
}

TEST(MemoryGuardTest, WhatWasRefusedIsNotHeldAgainstTheNext) {
    MemoryGuard guard;
    EXPECT_THROW(guard.add(kMoreThanAnyMachineHas), std::bad_alloc);
    EXPECT_NO_THROW(guard.add(1));
    EXPECT_NO_THROW(guard.add(MemoryGuard::kFreeOfCheck));
}
