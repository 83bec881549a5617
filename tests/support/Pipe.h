#pragma once

#include <stdexcept>

#include "platform/Descriptors.h"

/// A pipe that no process inherits unasked.
struct Pipe {
    Pipe() {
        if (!System::openPipe(readEnd, writeEnd))
            throw std::runtime_error("no pipe");
    }

    System::Descriptor readEnd;
    System::Descriptor writeEnd;
};
