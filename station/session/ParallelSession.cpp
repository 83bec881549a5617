#include "session/ParallelSession.h"

#include <exception>
#include <utility>

#include "client/Failure.h"

namespace station {

ParallelSession::ParallelSession(Open open) : m_open(std::move(open)) {
    m_links.push_back(m_open());
    m_free.push_back(m_links.back().get());
}

std::size_t ParallelSession::widen() {
    if (std::exchange(m_isWide, true))
        return m_links.size();
    try {
        while (m_links.size() < kMostLinks) {
            m_links.push_back(m_open());
            m_free.push_back(m_links.back().get());
        }
    } catch (const Failure&) {
        // What there is has to do.
    }
    return m_links.size();
}

void ParallelSession::begin(const std::string& name, const std::vector<std::string>& arguments) {
    if (m_free.empty())
        throw Failure(Failure::Kind::ConnectionLost, "the link is no longer usable");
    m_free.back()->begin(name, arguments);
    m_underWay.push_back(m_free.back());
    m_free.pop_back();
}

Answer ParallelSession::finish(const InfoSink& onInfo) {
    Session* const link = m_underWay.front();
    m_underWay.pop_front();
    Answer answer = link->finish(onInfo);
    m_free.push_back(link); // one that fails is not asked again
    return answer;
}

void ParallelSession::abandon() {
    try {
        while (!m_underWay.empty())
            finish([](const std::string&) {});
    } catch (const std::exception&) {
        // Whoever waited in vain once does not go on waiting: the other answers stay where they are.
        m_underWay.clear();
    }
}

} // namespace station
