#include "support/CallScript.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <utility>

CallScript::~CallScript() {
    for (const auto& [function, steps] : m_script)
        EXPECT_TRUE(steps.empty()) << steps.size() << " scripted calls of " << function << " never came";
}

void CallScript::script(const std::string& function, const std::vector<Step>& steps) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script[function].insert(m_script[function].end(), steps.begin(), steps.end());
}

CallScript::Step CallScript::failing(int error) {
    return [error]() -> std::optional<long> {
        errno = error;
        return -1;
    };
}

CallScript::Step CallScript::returning(long result) {
    return [result]() -> std::optional<long> { return result; };
}

CallScript::Step CallScript::passing() {
    return [] { return std::optional<long>(); };
}

CallScript::Step CallScript::after(std::function<void()> action) {
    return [action = std::move(action)] {
        const int error = errno;
        action();
        errno = error;
        return std::optional<long>();
    };
}

std::vector<std::string> CallScript::all() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

void CallScript::forget() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.clear();
    m_pollLimits.clear();
}

std::vector<int> CallScript::pollLimits() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_pollLimits;
}

std::optional<long> CallScript::on(const char* function) {
    Step step;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_calls.emplace_back(function);
        std::deque<Step>& steps = m_script[function];
        if (steps.empty())
            return std::nullopt;
        step = std::move(steps.front());
        steps.pop_front();
    }
    return step();
}

void CallScript::note(const char* what) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.emplace_back(what);
}

void CallScript::notePollLimit(int limit) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_pollLimits.push_back(limit);
}

bool CallScript::isScripted(const char* function) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto steps = m_script.find(function);
    return steps != m_script.end() && !steps->second.empty();
}
