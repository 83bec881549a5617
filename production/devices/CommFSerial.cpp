#include "devices/CommFSerial.h"

#include "platform/Terminal.h"

bool CommFSerial::openDevice(const char* path) {
    m_stream = System::openTerminalStream(path);
    return m_stream != nullptr;
}

int CommFSerial::descriptor() const {
    return m_stream == nullptr ? -1 : ::fileno(m_stream);
}

void CommFSerial::closeDevice() {
    std::fclose(m_stream);
    m_stream = nullptr;
}

bool CommFSerial::flushDevice() {
    return std::fflush(m_stream) == 0;
}
