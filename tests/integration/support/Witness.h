#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "support/Delays.h"

/// A station that keeps asking and checks every answer, on a thread of its own, from its making to its
/// end. Fails the test when an answer is wrong or does not come.
class Witness {
public:
    /// Asks for what there is no command for, each time by another name.
    Witness();
    /// Asks the same again and again. The delays are its own until it ends.
    Witness(std::string asked, std::string expected, Delays& delays);
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness();

    /// Answers checked so far.
    long answers() const { return m_answers; }

    /// Waits until so many more answers have been checked; false when they do not come.
    bool seesMore(long answers) const;

private:
    struct Exchange {
        std::string asked;
        std::string expected;
    };

    Witness(std::function<Exchange(long number)> next, Delays* delays);

    void ask();

    const std::function<Exchange(long number)> m_next;
    Delays* const m_delays;

    std::atomic<bool> m_stop{false};
    std::atomic<long> m_answers{0};
    std::thread m_thread;
};
