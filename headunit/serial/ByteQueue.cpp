#include "serial/ByteQueue.h"

namespace headunit {

bool ByteQueue::push(std::string_view bytes) {
    if (bytes.size() > room())
        return false;
    if (m_gone > m_capacity / 2) { // seldom enough to move every byte about once
        m_bytes.erase(0, m_gone);
        m_gone = 0;
    }
    m_bytes.append(bytes);
    return true;
}

void ByteQueue::drop(std::size_t count) {
    m_gone += count;
    if (m_gone == m_bytes.size())
        clear();
}

void ByteQueue::clear() {
    m_bytes.clear();
    m_gone = 0;
}

} // namespace headunit
