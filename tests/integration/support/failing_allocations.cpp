// Loaded into a daemon ahead of the system's library: allocations fail as the plan says that stands in
// the file named by FAILING_ALLOCATIONS.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include "support/FaultPlan.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}

namespace {

FaultPlan* s_plan = nullptr;

__attribute__((constructor)) void readPlan() {
    const char* path = std::getenv(kFaultPlanVariable);
    const int file = path == nullptr ? -1 : ::open(path, O_RDWR | O_CLOEXEC);
    if (file < 0)
        return;
    void* memory = ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (memory == MAP_FAILED)
        return;
    auto* plan = static_cast<FaultPlan*>(memory);
    std::int32_t nobody = 0;
    if (plan->owner.compare_exchange_strong(nobody, ::getpid()))
        s_plan = plan;
}

bool isToFail() {
    if (s_plan == nullptr)
        return false;
    const std::uint64_t first = s_plan->first;
    if (first == 0)
        return false;
    const std::uint64_t number = ++s_plan->calls;
    if (number < first || number - first >= s_plan->times)
        return false;
    errno = ENOMEM;
    return true;
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    return isToFail() ? nullptr : __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
    return isToFail() ? nullptr : __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void* realloc(void* memory, std::size_t size) {
    return isToFail() ? nullptr : __libc_realloc(memory, size);
}

} // extern "C"
