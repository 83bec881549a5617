#pragma once

#include <vector>

/// Notes the pauses of the code under test, which take no time while this lives. One thread.
class Pauses {
public:
    Pauses();
    ~Pauses();
    Pauses(const Pauses&) = delete;
    Pauses& operator=(const Pauses&) = delete;

    /// In milliseconds, those since the last look.
    std::vector<int> take();
};
