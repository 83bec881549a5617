#include "devices/OutputQueue.h"

#include <utility>

void OutputQueue::append(std::string bytes) {
    if (bytes.empty())
        return;
    const std::size_t size = bytes.size();
    m_pieces.push_back(std::move(bytes));
    m_appended += size;
}

std::string_view OutputQueue::next() const {
    return m_pieces.empty() ? std::string_view() : std::string_view(m_pieces.front()).substr(m_at);
}

void OutputQueue::take(std::size_t count) {
    m_taken += count;
    m_at += count;
    if (m_at < m_pieces.front().size())
        return;
    m_pieces.pop_front();
    m_at = 0;
}

void OutputQueue::clear() {
    m_pieces.clear();
    m_at = 0;
    m_taken = m_appended;
}
