#pragma once

/// Keeps a front end from spinning on a line that fails as soon as it is opened: the first failure is
/// retried at once, every further one after a longer pause. One thread at a time.
class RetryPause {
public:
    static constexpr int kFirstMs = 10;
    static constexpr int kLongestMs = 1000;

    /// Waits before the next attempt.
    void wait();
    /// The station has been heard: the next failure is a new one.
    void reset() { m_nextMs = 0; }

private:
    int m_nextMs = 0;
};
