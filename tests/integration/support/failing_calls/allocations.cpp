#include "support/failing_calls/Gate.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}

IN_FRONT void* malloc(std::size_t size) {
    return Gate::failsForMemory() ? nullptr : __libc_malloc(size);
}

IN_FRONT void* calloc(std::size_t count, std::size_t size) {
    return Gate::failsForMemory() ? nullptr : __libc_calloc(count, size);
}

IN_FRONT void* realloc(void* memory, std::size_t size) {
    return Gate::failsForMemory() ? nullptr : __libc_realloc(memory, size);
}
