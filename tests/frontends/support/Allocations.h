#pragma once

/// Watches what the calling thread takes from the heap, and can let it run out. Make one at a time.
class Allocations {
public:
    Allocations();
    ~Allocations();
    Allocations(const Allocations&) = delete;
    Allocations& operator=(const Allocations&) = delete;

    /// Lets `count` further allocations pass; the one after them fails, and only that one.
    void failAfter(int count);
    void failNever();

    /// Blocks taken minus blocks given back since this object was made.
    long live() const;
};
