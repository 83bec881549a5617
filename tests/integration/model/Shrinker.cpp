#include "model/Shrinker.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

/// The sequence without what comes behind its first wrong answer.
Sequence cutBehind(Sequence sequence, std::size_t wrongAt) {
    const Request wrong = sequence[wrongAt];
    // What the other links ask meanwhile may be what makes it wrong.
    const auto isLater = [&](const Request& request) {
        return request.phase > wrong.phase ||
               (request.phase == wrong.phase && request.link == wrong.link &&
                &request > &sequence[wrongAt]);
    };
    std::vector<bool> kept;
    for (const Request& request : sequence)
        kept.push_back(!isLater(request));
    Sequence cut;
    for (std::size_t at = 0; at < sequence.size(); ++at)
        if (kept[at])
            cut.push_back(std::move(sequence[at]));
    return cut;
}

Sequence oneAfterTheOther(Sequence sequence) {
    int phase = 0;
    for (Request& request : sequence)
        request.phase = phase++;
    return sequence;
}

/// The plainer words that a word may be replaced by, the plainest first.
std::vector<Word> plainerThan(const Word& word) {
    if (word.notation == Word::Notation::Text) {
        std::vector<Word> plainer;
        for (const char* number : {"0", "1"}) {
            if (word.bytes == number)
                break;
            plainer.push_back(Word::text(number));
        }
        return plainer;
    }
    const std::size_t size = word.bytes.size();
    std::vector<Word> plainer;
    for (const std::size_t shorter : {size / 2, size - std::min<std::size_t>(size, 1)})
        if (shorter < size)
            plainer.push_back(Word::hex(word.bytes.substr(0, shorter)));
    if (word.bytes != std::string(size, '\0') || word.notation != Word::Notation::Hex)
        plainer.push_back(Word::hex(std::string(size, '\0')));
    return plainer;
}

std::vector<Request> plainerLines(const Request& request) {
    constexpr std::size_t kFirstArgument = 2;
    std::vector<Request> plainer;
    for (std::size_t at = kFirstArgument; at < request.words.size(); ++at)
        for (const Word& word : plainerThan(request.words[at])) {
            plainer.push_back(request);
            plainer.back().words[at] = word;
        }
    return plainer;
}

std::vector<Request> plainerFrames(const Request& request) {
    std::vector<Request> plainer;
    for (std::size_t size = request.frame.size() / 2; size > 0 && size < request.frame.size();
         size += (request.frame.size() - size + 1) / 2) {
        plainer.push_back(request);
        plainer.back().frame.resize(size);
    }
    for (std::size_t at = 1; at < request.frame.size(); ++at) {
        if (request.frame[at] == '\0')
            continue;
        plainer.push_back(request);
        plainer.back().frame[at] = '\0';
    }
    return plainer;
}

} // namespace

bool Shrinker::fails(const Sequence& candidate) {
    if (candidate.empty() || m_attempts >= m_mostAttempts)
        return false;
    ++m_attempts;
    const auto wrongAt = m_attempt(candidate);
    if (wrongAt)
        m_best = cutBehind(candidate, *wrongAt);
    return wrongAt.has_value();
}

bool Shrinker::leaveOutChunks(std::size_t size) {
    bool isShorter = false;
    // From the end, which is needed least often to come to the place.
    for (std::size_t end = m_best.size(); end > 0;) {
        const std::size_t begin = end > size ? end - size : 0;
        Sequence candidate = m_best;
        candidate.erase(candidate.begin() + static_cast<std::ptrdiff_t>(begin),
                        candidate.begin() + static_cast<std::ptrdiff_t>(end));
        isShorter |= fails(candidate);
        end = std::min(begin, m_best.size());
    }
    return isShorter;
}

bool Shrinker::leaveOut() {
    bool isShorter = false;
    for (std::size_t size = m_best.size() / 2; size > 0; size /= 2)
        isShorter |= leaveOutChunks(size);
    return isShorter;
}

bool Shrinker::simplify() {
    bool isPlainer = false;
    for (std::size_t at = 0; at < m_best.size(); ++at) {
        bool again = true;
        while (again && at < m_best.size()) {
            again = false;
            const Request& request = m_best[at];
            for (const Request& plainer :
                 request.isFrame() ? plainerFrames(request) : plainerLines(request)) {
                Sequence candidate = m_best;
                candidate[at] = plainer;
                again = fails(candidate);
                isPlainer |= again;
                if (again)
                    break;
            }
        }
    }
    return isPlainer;
}

Sequence Shrinker::shrink(Sequence failing, std::size_t wrongAt) {
    m_best = cutBehind(std::move(failing), wrongAt);
    fails(oneAfterTheOther(m_best));
    bool again = true;
    while (again && m_attempts < m_mostAttempts)
        again = static_cast<int>(leaveOut()) + static_cast<int>(simplify()) > 0;
    return m_best;
}
