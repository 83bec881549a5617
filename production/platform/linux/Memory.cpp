#include "platform/Memory.h"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/Uninterrupted.h"
#include "wire/Descriptor.h"

namespace System {

// Linux promises memory that it does not have and kills whoever touches it, so a failing allocation
// cannot be waited for; the kernel's own estimate is the only warning there is.
std::uint64_t availableMemory() {
    constexpr std::uint64_t kUnknown = std::numeric_limits<std::uint64_t>::max();
    constexpr char kLabel[] = "MemAvailable:";
    const Descriptor file(uninterrupted([] { return ::open("/proc/meminfo", O_RDONLY | O_CLOEXEC); }));
    if (!file)
        return kUnknown;
    char text[512];
    const ssize_t length = uninterrupted([&] { return ::read(file.get(), text, sizeof text - 1); });
    if (length <= 0)
        return kUnknown;
    text[length] = '\0';
    const char* line = std::strstr(text, kLabel);
    if (line == nullptr)
        return kUnknown;
    return std::strtoull(line + sizeof kLabel - 1, nullptr, 10) * 1024;
}

void keepLittleFreedMemory() {
    // Left alone, both become larger with the blocks that are freed, up to 32 MiB for each block and
    // 64 MiB for what each thread's heap keeps at its end, which trimming does not reach.
    constexpr int kMostKept = 1 << 20;
    ::mallopt(M_MMAP_THRESHOLD, kMostKept);
    ::mallopt(M_TRIM_THRESHOLD, kMostKept);
}

void returnFreedMemory() {
    ::malloc_trim(0);
}

} // namespace System
