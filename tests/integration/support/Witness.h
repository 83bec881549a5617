#pragma once

#include <atomic>
#include <string>
#include <thread>

/// A station that keeps asking and checks every answer, on a thread of its own, from its making to its
/// end. Fails the test when an answer is wrong or does not come.
class Witness {
public:
    Witness();
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness();

    /// Answers checked so far.
    long answers() const { return m_answers; }

    /// Waits until so many more answers have been checked; false when they do not come.
    bool seesMore(long answers) const;

private:
    void ask();

    std::atomic<bool> m_stop{false};
    std::atomic<long> m_answers{0};
    std::thread m_thread;
};
