#pragma once

#include <sys/resource.h>

/// For its lifetime the process gets no new file descriptor; those it has stay.
class NoMoreDescriptors {
public:
    NoMoreDescriptors();
    ~NoMoreDescriptors();
    NoMoreDescriptors(const NoMoreDescriptors&) = delete;
    NoMoreDescriptors& operator=(const NoMoreDescriptors&) = delete;

private:
    rlimit m_before;
};
