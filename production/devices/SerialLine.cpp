#include "devices/SerialLine.h"

#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

#include "platform/Terminal.h"
#include "platform/Uninterrupted.h"

namespace {

constexpr char kBadStopBits[] = "Unsupported number of stop bits for Device";
constexpr char kBadParity[] = "Invalid parity specified for ";
constexpr char kNoOpen[] = "Failed to open Device ";
constexpr char kNoAttributes[] = "Failed get original Device Attributes of ";
constexpr char kNoOutputSpeed[] = "Failed to set output speed for";
constexpr char kNoInputSpeed[] = "Failed to set input speed for ";
constexpr char kNoRawMode[] = "Failed to set RAW mode for ";
constexpr char kNoParameters[] = "Failed to set parameters for ";
constexpr char kNoReset[] = "Failed to reset old Attribute for ";
constexpr char kNoFlush[] = "Error flushing ";
constexpr char kFlushNotOpen[] = "Calling Flush on an invalid Handle";

} // namespace

DeviceResult SerialLine::isOpen(bool& open) {
    open = isDeviceOpen();
    return {};
}

DeviceResult SerialLine::open(const std::string& path, unsigned baud, unsigned dataBits,
                              unsigned stopBits, Parity parity) {
    unsigned sizeFlag = 0;
    if (DeviceResult result = val2DataBitFlag(sizeFlag, dataBits); result.failed())
        return result;
    if (stopBits != 1 && stopBits != 2)
        return create_commhanderror(kBadStopBits + path, DeviceError::kStopBits);
    if (parity > Odd)
        return create_commhanderror(kBadParity + path, DeviceError::kParity);
    tcflag_t frame = sizeFlag;
    if (stopBits == 2)
        frame |= CSTOPB;
    if (parity != None)
        frame |= PARENB;
    if (parity == Odd)
        frame |= PARODD;

    close();
    auto opening = std::make_shared<WakePipe>();
    errno = 0;
    m_path = path;
    if (!openDevice(path.c_str()))
        return closeAfter(kNoOpen);
    opening->open(); // after the device, which comes first when descriptors are short
    m_opening = std::move(opening);
    return setUp(baud, frame);
}

/// Gives the open device its settings, with a frame of these bits.
DeviceResult SerialLine::setUp(unsigned baud, tcflag_t frame) {
    if (::tcgetattr(descriptor(), &m_savedAttributes) != 0)
        return closeAfter(kNoAttributes);

    termios attributes{};
    attributes.c_iflag = INPCK | ISTRIP;
    attributes.c_cflag = frame | CREAD | CLOCAL;
    attributes.c_cc[VMIN] = 1;

    unsigned speed = 0;
    // The one failure that leaves the device open, as it was found.
    if (DeviceResult result = val2BaudRate(speed, baud); result.failed())
        return result;
    if (!System::setOutputSpeed(attributes, speed))
        return closeAfter(kNoOutputSpeed);
    if (!System::setInputSpeed(attributes, speed))
        return closeAfter(kNoInputSpeed);
    if (!System::makeRaw(attributes))
        return closeAfter(kNoRawMode);
    if (!setAttributes(attributes))
        return closeAfter(kNoParameters);
    flushDevice();
    return {};
}

DeviceResult SerialLine::close() {
    if (!isDeviceOpen())
        return {};
    DeviceResult result;
    if (!setAttributes(m_savedAttributes))
        result = systemError(kNoReset);
    closeDevice();
    endOpening();
    return result;
}

/// False and errno on failure.
bool SerialLine::setAttributes(const termios& attributes) const {
    return System::uninterrupted([&] { return ::tcsetattr(descriptor(), TCSAFLUSH, &attributes); }) == 0;
}

void SerialLine::abandon() {
    forgetDevice();
    endOpening();
}

void SerialLine::endOpening() {
    m_savedAttributes = {};
    m_output.clear();
    if (m_opening)
        m_opening->end();
    m_opening.reset();
}

DeviceResult SerialLine::flush() {
    if (!isDeviceOpen())
        return create_commhanderror(kFlushNotOpen, DeviceError::kNotUsable);
    errno = 0;
    return flushDevice() ? DeviceResult{} : systemError(kNoFlush);
}

/// Without a text where there is no memory for one: a line that fails is closed nevertheless.
DeviceResult SerialLine::systemError(const char* lead) const noexcept {
    const int error = errno;
    try {
        return create_commhanderror(lead + m_path + ": " + std::generic_category().message(error),
                                    error);
    } catch (const std::bad_alloc&) {
        return {error, {}};
    }
}

DeviceResult SerialLine::closeAfter(const char* lead) {
    DeviceResult result = systemError(lead);
    close();
    return result;
}
