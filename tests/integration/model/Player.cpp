#include "model/Player.h"

#include <algorithm>
#include <exception>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace {

struct Step {
    std::size_t at; ///< in the sequence
    const Request* request;
    Model::Prediction expected;
};

/// One phase of a sequence.
class Phase {
public:
    explicit Phase(Unit& unit) : m_unit(unit) {}

    void add(Step step) { m_steps[step.request->link].push_back(std::move(step)); }

    std::optional<Mismatch> play();

private:
    void playLink(const std::vector<Step>& steps);
    std::optional<Mismatch> playStep(const Step& step);
    void note(Mismatch mismatch);

    Unit& m_unit;
    std::map<int, std::vector<Step>> m_steps; // by their link
    std::mutex m_mutex;
    std::optional<Mismatch> m_mismatch; // guarded by m_mutex
};

std::optional<Mismatch> Phase::play() {
    if (m_steps.size() == 1) {
        playLink(m_steps.begin()->second);
        return m_mismatch;
    }
    std::vector<std::thread> threads;
    for (const auto& steps : m_steps)
        threads.emplace_back([this, &steps] { playLink(steps.second); });
    for (std::thread& thread : threads)
        thread.join();
    return m_mismatch;
}

void Phase::playLink(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        auto mismatch = playStep(step);
        if (!mismatch)
            continue;
        note(std::move(*mismatch));
        return;
    }
}

std::optional<Mismatch> Phase::playStep(const Step& step) {
    try {
        const std::string received = m_unit.exchange(*step.request, step.expected);
        if (!isAsExpected(*step.request, received, step.expected.bytes))
            return Mismatch{step.at, step.expected.bytes, received};
        for (const Effect& effect : step.expected.effects)
            if (!m_unit.shows(effect))
                return Mismatch{step.at, effect.what, "nothing of it"};
        return std::nullopt;
    } catch (const std::exception& exception) {
        return Mismatch{step.at, step.expected.bytes, exception.what()};
    }
}

void Phase::note(Mismatch mismatch) {
    const std::scoped_lock lock(m_mutex);
    if (!m_mismatch || mismatch.at < m_mismatch->at)
        m_mismatch = std::move(mismatch);
}

} // namespace

std::optional<Mismatch> play(const Sequence& sequence, Unit& unit,
                             const std::function<void(std::size_t)>& progress) {
    Model model = unit.model();
    for (std::size_t at = 0; at < sequence.size();) {
        Phase phase(unit);
        // All that is to come is known before the first request of the phase is sent.
        const int number = sequence[at].phase;
        for (; at < sequence.size() && sequence[at].phase == number; ++at)
            if (model.knows(sequence[at]))
                phase.add({at, &sequence[at], model.predict(sequence[at])});
        if (auto mismatch = phase.play())
            return mismatch;
        progress(at);
    }
    return std::nullopt;
}
