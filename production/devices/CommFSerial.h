#pragma once

#include <cstdio>

#include "devices/SerialLine.h"

/// Drives a serial device through a standard-I/O stream. A write is delivered whole, in its turn: what
/// the device does not take at once waits for it and goes out while somebody reads or transmits.
class CommFSerial : public SerialLine {
public:
    CommFSerial() : SerialLine(m_path, m_savedAttributes) {}
    ~CommFSerial() override { close(); }

protected:
    bool openDevice(const char* path) override;
    int descriptor() const override;
    void closeDevice() override;
    void forgetDevice() override { m_stream = nullptr; }
    /// Pushes out what the stream holds; discards nothing.
    bool flushDevice() override;
    std::size_t mostWaiting() const override { return kMostWaiting; }

private:
    static constexpr std::size_t kMostWaiting = std::size_t{256} << 10;

    std::string m_path;
    std::FILE* m_stream = nullptr;
    termios m_savedAttributes{};
};
