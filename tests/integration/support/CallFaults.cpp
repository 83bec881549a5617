#include "support/CallFaults.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <stdexcept>

#include "wire/Descriptor.h"

CallFaults::CallFaults() : m_file("/tmp/fault-plan-XXXXXX") {
    const System::Descriptor file(::mkostemp(m_file.data(), O_CLOEXEC));
    void* memory = MAP_FAILED;
    if (file && ::ftruncate(file.get(), sizeof(FaultPlan)) == 0)
        memory = ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (memory == MAP_FAILED)
        throw std::runtime_error(m_file + ": " + std::strerror(errno));
    m_plan = new (memory) FaultPlan{};
}

CallFaults::~CallFaults() {
    ::munmap(m_plan, sizeof(FaultPlan));
    ::unlink(m_file.c_str());
}

void CallFaults::fail(Fault fault, std::uint64_t first, std::uint64_t times) {
    plan(fault, first, times, 1);
}

void CallFaults::failEvery(Fault fault, std::uint64_t count) {
    plan(fault, count, kForEver, count);
}

void CallFaults::plan(Fault fault, std::uint64_t first, std::uint64_t times, std::uint64_t every) {
    m_plan->first = 0;
    m_plan->calls = 0;
    m_plan->failedSize = 0;
    for (std::atomic<char>& character : m_plan->failed)
        character = '\0';
    m_plan->fault = fault;
    m_plan->times = times;
    m_plan->every = every;
    m_plan->first = first;
}

std::uint64_t CallFaults::stop() {
    m_plan->first = 0;
    return m_plan->calls;
}

bool CallFaults::areOver() const {
    constexpr std::uint64_t kMany = 30;
    const std::uint64_t first = m_plan->first;
    return first != 0 && m_plan->calls >= first + std::min<std::uint64_t>(m_plan->times, kMany) - 1;
}

std::string CallFaults::failedCalls() const {
    std::string names;
    for (const std::atomic<char>& character : m_plan->failed) {
        if (character == '\0')
            break;
        names += character;
    }
    return names;
}
