#include "support/DescriptorLimit.h"

NoMoreDescriptors::NoMoreDescriptors() {
    ::getrlimit(RLIMIT_NOFILE, &m_before);
    const rlimit none{0, m_before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
}

NoMoreDescriptors::~NoMoreDescriptors() {
    ::setrlimit(RLIMIT_NOFILE, &m_before);
}
