#pragma once

#include <gtest/gtest.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "wire/Descriptor.h"

namespace station {

/// Signals that interrupt this thread's system calls every few milliseconds while the object lives. A
/// byte for each can be read from the descriptor.
class Interruptions {
public:
    Interruptions() {
        std::array<int, 2> ends = {};
        EXPECT_EQ(::pipe(ends.data()), 0);
        m_counted.reset(ends[0]);
        m_counter.reset(ends[1]);
        s_counter = m_counter.get();
        struct sigaction action = {};
        action.sa_handler = [](int) { static_cast<void>(::write(s_counter, "x", 1) + 1); };
        ::sigaction(SIGALRM, &action, &m_previous);
        const itimerval often = {{0, 5000}, {0, 5000}};
        ::setitimer(ITIMER_REAL, &often, nullptr);
    }

    ~Interruptions() {
        const itimerval never = {};
        ::setitimer(ITIMER_REAL, &never, nullptr);
        ::sigaction(SIGALRM, &m_previous, nullptr);
    }

    /// Blocks until `count` further signals have been handled.
    void waitFor(int count) const {
        char byte = 0;
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(::read(m_counted.get(), &byte, 1), 1);
    }

private:
    inline static int s_counter = -1;
    System::Descriptor m_counted;
    System::Descriptor m_counter;
    struct sigaction m_previous = {};
};

} // namespace station
