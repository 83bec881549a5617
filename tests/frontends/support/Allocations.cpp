#include "support/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int kNever = -1;

thread_local bool t_watching = false;
thread_local int t_leftUntilFailure = kNever;
thread_local long t_live = 0;

/// Counts one allocation; true when it shall fail.
bool failsNow() {
    if (!t_watching || t_leftUntilFailure == kNever)
        return false;
    return t_leftUntilFailure-- == 0;
}

void* noteTaken(void* memory) {
    if (t_watching && memory != nullptr)
        ++t_live;
    return memory;
}

void noteGivenBack(const void* memory) {
    if (t_watching && memory != nullptr)
        --t_live;
}

} // namespace

Allocations::Allocations() {
    t_live = 0;
    t_leftUntilFailure = kNever;
    t_watching = true;
}

Allocations::~Allocations() {
    t_watching = false;
}

void Allocations::failAfter(int count) {
    t_leftUntilFailure = count;
}

void Allocations::failNever() {
    t_leftUntilFailure = kNever;
}

long Allocations::live() const {
    return t_live;
}

extern "C" {

void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size) {
    return failsNow() ? nullptr : noteTaken(__real_malloc(size));
}

void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return failsNow() ? nullptr : noteTaken(__real_calloc(count, size));
}

void* __real_realloc(void* memory, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size) {
    if (failsNow())
        return nullptr;
    void* const larger = __real_realloc(memory, size);
    return memory == nullptr ? noteTaken(larger) : larger;
}

void __real_free(void* memory);
void __wrap_free(void* memory) {
    noteGivenBack(memory);
    __real_free(memory);
}

} // extern "C"

void* operator new(std::size_t size) {
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
