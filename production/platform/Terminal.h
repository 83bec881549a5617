#pragma once

#include <termios.h>

#include <cstdio>

#include "wire/Descriptor.h"

namespace System {

/// Serial devices. What is opened is close-on-exec and never becomes the controlling terminal: a line
/// that hangs up must not end the process. Opening does not wait for a carrier. Any thread.

/// For reading and writing, non-blocking. Empty and errno on failure.
Descriptor openTerminal(const char* path);

/// The same as a stream, which the caller closes. Null and errno on failure.
std::FILE* openTerminalStream(const char* path);

/// Sets a speed in bits a second, which a system may encode in its own way. False and errno (EINVAL)
/// when the system has no such speed.
bool setOutputSpeed(termios& attributes, unsigned baud);
bool setInputSpeed(termios& attributes, unsigned baud);

/// Turns off what a terminal does for people (echo, lines, signals, translation). False and errno on
/// failure. The frame format may change with it: that is the system's notion of raw.
bool makeRaw(termios& attributes);

} // namespace System
