#pragma once

#include "devices/SerialLine.h"
#include "wire/Descriptor.h"

/// Drives a serial device through a plain descriptor. A write hands over what the device takes at once.
class CommSerial : public SerialLine {
public:
    CommSerial() : SerialLine(m_path, m_savedAttributes) {}
    ~CommSerial() override { close(); }

protected:
    bool openDevice(const char* path) override;
    int descriptor() const override { return m_device.get(); }
    void closeDevice() override { m_device.reset(); }
    void forgetDevice() override { m_device.release(); }
    /// Discards unread input and unsent output.
    bool flushDevice() override;
    std::size_t mostWaiting() const override { return 0; }

private:
    std::string m_path;
    System::Descriptor m_device;
    termios m_savedAttributes{};
};
