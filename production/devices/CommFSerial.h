#pragma once

#include <cstdio>

#include "devices/SerialLine.h"

/// Drives a serial device through a standard-I/O stream. Its writes wait until the device has taken all
/// bytes.
class CommFSerial : public SerialLine {
public:
    ~CommFSerial() override { close(); }

protected:
    bool openDevice(const char* path) override;
    int descriptor() const override;
    void closeDevice() override;
    void forgetDevice() override { m_stream = nullptr; }
    /// Pushes out what the stream holds; discards nothing.
    bool flushDevice() override;

private:
    std::FILE* m_stream = nullptr;
};
