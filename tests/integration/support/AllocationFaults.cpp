#include "support/AllocationFaults.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <stdexcept>

#include "wire/Descriptor.h"

AllocationFaults::AllocationFaults() : m_file("/tmp/fault-plan-XXXXXX") {
    const System::Descriptor file(::mkostemp(m_file.data(), O_CLOEXEC));
    void* memory = MAP_FAILED;
    if (file && ::ftruncate(file.get(), sizeof(FaultPlan)) == 0)
        memory = ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (memory == MAP_FAILED)
        throw std::runtime_error(m_file + ": " + std::strerror(errno));
    m_plan = new (memory) FaultPlan{};
}

AllocationFaults::~AllocationFaults() {
    ::munmap(m_plan, sizeof(FaultPlan));
    ::unlink(m_file.c_str());
}

void AllocationFaults::fail(std::uint64_t first, std::uint64_t times) {
    m_plan->first = 0;
    m_plan->calls = 0;
    m_plan->times = times;
    m_plan->first = first;
}

std::uint64_t AllocationFaults::stop() {
    m_plan->first = 0;
    return m_plan->calls;
}
