#include "devices/CommSerial.h"

#include <termios.h>

#include "platform/Terminal.h"

bool CommSerial::openDevice(const char* path) {
    m_device = System::openTerminal(path);
    return static_cast<bool>(m_device);
}

bool CommSerial::flushDevice() {
    return ::tcflush(m_device.get(), TCIOFLUSH) == 0;
}
