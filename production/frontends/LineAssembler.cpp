#include "frontends/LineAssembler.h"

#include <cstring>
#include <new>

#include "core/MemoryGuard.h"
#include "wire/Line.h"

namespace {

constexpr std::string_view kLineEnd = wire::kLineEnd;
constexpr std::size_t kFirstCapacity = 256;
constexpr std::size_t kKeptCapacity = 4096;

} // namespace

bool LineAssembler::append(const char* bytes, std::size_t count) {
    if (count == 0)
        return false;
    if (m_size + count > m_capacity)
        grow(m_size + count);
    char* line = m_line.get();
    std::memcpy(line + m_size, bytes, count);
    m_size += count;
    return m_size >= kLineEnd.size() &&
           std::memcmp(line + m_size - kLineEnd.size(), kLineEnd.data(), kLineEnd.size()) == 0;
}

char* LineAssembler::data(std::size_t room) {
    if (m_size + room > m_capacity)
        grow(m_size + room);
    return m_line.get();
}

void LineAssembler::reset() {
    m_size = 0;
    if (m_capacity <= kKeptCapacity)
        return;
    m_line.reset();
    m_capacity = 0;
}

void LineAssembler::grow(std::size_t needed) {
    std::size_t capacity = m_capacity == 0 ? kFirstCapacity : m_capacity * 2;
    if (capacity < needed)
        capacity = needed;
    MemoryGuard::require(capacity - m_size);
    auto* larger = static_cast<char*>(std::realloc(m_line.get(), capacity));
    if (larger == nullptr)
        throw std::bad_alloc();
    static_cast<void>(m_line.release());
    m_line.reset(larger);
    m_capacity = capacity;
}
