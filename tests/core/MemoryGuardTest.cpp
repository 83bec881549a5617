#include "core/MemoryGuard.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>

#include "platform/Memory.h"

namespace {

constexpr std::size_t kMoreThanAnyMachineHas = std::size_t{1} << 60;

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
    EXPECT_THROW(MemoryGuard::require(System::availableMemory() - kReserve / 2), std::bad_alloc);
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
