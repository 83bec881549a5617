#pragma once

#include "devices/SerialLine.h"
#include "platform/Descriptor.h"

/// Drives a serial device through a plain, non-blocking descriptor.
class CommSerial : public SerialLine {
public:
    ~CommSerial() override { close(); }

protected:
    bool openDevice(const char* path) override;
    int descriptor() const override { return m_device.get(); }
    void closeDevice() override { m_device.reset(); }
    void forgetDevice() override { m_device.release(); }
    /// Discards unread input and unsent output.
    bool flushDevice() override;

private:
    System::Descriptor m_device;
};
