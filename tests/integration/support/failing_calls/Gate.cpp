// Loaded into a daemon ahead of the system's library: calls go wrong as the plan says that stands in the
// file named by FAILING_CALLS.
#include "support/failing_calls/Gate.h"

#include <fcntl.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

FaultPlan* s_plan = nullptr;

struct Range {
    std::uintptr_t begin;
    std::uintptr_t end;
};

// The daemon and the libraries that it is linked with, but for this one. What it loads later, a driver
// of the unit's, is not what is tried.
std::array<Range, 32> s_tried;
std::size_t s_triedCount = 0;

int noteLoaded(dl_phdr_info* object, std::size_t /*size*/, void* /*nothing*/) {
    Range range{UINTPTR_MAX, 0};
    for (int at = 0; at < object->dlpi_phnum; ++at) {
        const auto& segment = object->dlpi_phdr[at];
        if (segment.p_type != PT_LOAD)
            continue;
        const std::uintptr_t begin = object->dlpi_addr + segment.p_vaddr;
        range.begin = std::min(range.begin, begin);
        range.end = std::max(range.end, begin + segment.p_memsz);
    }
    const auto own = reinterpret_cast<std::uintptr_t>(&s_plan);
    const bool isOwn = own >= range.begin && own < range.end;
    if (!isOwn && s_triedCount < s_tried.size())
        s_tried[s_triedCount++] = range;
    return 0;
}

bool isTried(const void* caller) {
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    return std::any_of(s_tried.begin(), s_tried.begin() + s_triedCount, [address](const Range& range) {
        return address >= range.begin && address < range.end;
    });
}

/// Past the one that stands in this library, which may not be ready yet.
template <typename Function>
Function* original(const char* name, Function* /*type*/) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

__attribute__((constructor)) void readPlan() {
    const char* path = std::getenv(kFaultPlanVariable);
    const int file = path == nullptr ? -1 : original("open", ::open)(path, O_RDWR | O_CLOEXEC);
    if (file < 0)
        return;
    void* memory = ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    original("close", ::close)(file);
    if (memory == MAP_FAILED)
        return;
    ::dl_iterate_phdr(noteLoaded, nullptr);
    auto* plan = static_cast<FaultPlan*>(memory);
    std::int32_t nobody = 0;
    if (plan->owner.compare_exchange_strong(nobody, ::getpid()))
        s_plan = plan;
}

/// As many as there is room for, and of the same in a row the first.
void note(const char* name) {
    static std::atomic<const char*> last{nullptr};
    if (last.exchange(name) == name && s_plan->failedSize != 0)
        return;
    auto at = static_cast<std::size_t>(s_plan->failedSize.fetch_add(1 + std::strlen(name)));
    if (at + std::strlen(name) >= s_plan->failed.size())
        return;
    s_plan->failed[at] = ' ';
    while (*name != '\0')
        s_plan->failed[++at] = *name++;
}

/// Whether one of the calls that are counted goes wrong.
bool isDue(const char* name) {
    const std::uint64_t first = s_plan->first;
    if (first == 0)
        return false;
    const std::uint64_t number = ++s_plan->calls;
    if (number < first || number - first >= s_plan->times || (number - first) % s_plan->every != 0)
        return false;
    note(name);
    return true;
}

} // namespace

namespace Gate {

int Call::errorFor(Fault fault, bool waits) const {
    switch (fault) {
        case Fault::Error:
            return m_errors.error;
        case Fault::OtherError:
            return m_errors.other;
        case Fault::Interruption:
            return m_errors.repetition == Repetition::None ? 0 : EINTR;
        case Fault::NotReady:
            return m_errors.repetition == Repetition::WhenReady && !waits ? EAGAIN : 0;
        default:
            return 0;
    }
}

bool Call::fails(const void* caller, bool waits) const {
    if (s_plan == nullptr || !isTried(caller))
        return false;
    const int error = errorFor(s_plan->fault, waits);
    if (error == 0 || !isDue(m_name))
        return false;
    errno = error;
    return true;
}

bool Call::isHalved(Fault kind, const void* caller) const {
    return s_plan != nullptr && s_plan->fault == kind && isTried(caller) && isDue(m_name);
}

bool failsForMemory() {
    if (s_plan == nullptr || s_plan->fault != Fault::NoMemory || !isDue("malloc"))
        return false;
    errno = ENOMEM;
    return true;
}

} // namespace Gate
