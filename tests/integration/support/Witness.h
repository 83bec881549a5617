#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

/// A station that keeps asking and checks every answer, on a thread of its own, from its making to its
/// end. Fails the test when an answer is wrong or does not come.
class Witness {
public:
    /// Asks for what there is no command for, each time by another name.
    Witness();
    /// Asks the same again and again.
    Witness(std::string asked, std::string expected);
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness();

    /// Answers checked so far.
    long answers() const { return m_answers; }

    /// Of the answers so far.
    std::chrono::milliseconds longestDelay() const { return m_longestDelay; }

    /// Waits until so many more answers have been checked; false when they do not come.
    bool seesMore(long answers) const;

private:
    struct Exchange {
        std::string asked;
        std::string expected;
    };

    explicit Witness(std::function<Exchange(long number)> next);

    void ask();

    const std::function<Exchange(long number)> m_next;

    std::atomic<bool> m_stop{false};
    std::atomic<long> m_answers{0};
    std::atomic<std::chrono::milliseconds> m_longestDelay{std::chrono::milliseconds(0)};
    std::thread m_thread;
};
