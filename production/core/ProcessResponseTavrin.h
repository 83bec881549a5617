#pragma once

#include <vector>

#include "core/ProcessResponse.h"

/// A response that carries a frame of the binary protocol.
class ProcessResponseTavrin : public ProcessResponse {
public:
    ProcessResponseTavrin(unsigned int code, const char* format, ...)
        __attribute__((format(printf, 3, 4)));

    /// The whole answer frame, length byte first; empty until it is filled.
    std::vector<unsigned char> data;
};
