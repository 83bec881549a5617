#pragma once

#include <string>

#include "core/ProcessResponse.h"

/// A response that carries the text which the ASCII protocol answers after the command's name.
class ProcessResponseAscii : public ProcessResponse {
public:
    ProcessResponseAscii(unsigned int code, const char* format, ...)
        __attribute__((format(printf, 3, 4)));

    std::string answer = "ok";
};
