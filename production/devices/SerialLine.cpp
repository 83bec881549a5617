#include "devices/SerialLine.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <limits>
#include <system_error>

#include "platform/Terminal.h"

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
constexpr char kNoSelect[] = "Failed to select from ";
constexpr char kNoRead[] = "Failed to read from ";
constexpr char kNoWrite[] = "Failed to write to ";
constexpr char kNoFlush[] = "Error flushing ";
constexpr char kNotOpen[] = "Serial port not open.";
constexpr char kFlushNotOpen[] = "Calling Flush on an invalid Handle";
constexpr char kNoneSet[] = "Select indicated data, but none set";

constexpr int kWaitForEver = -1;

/// Waits for data as poll() does, which unlike select() takes any descriptor number; an interruption
/// does not shorten the wait.
int waitForEvent(pollfd& event, unsigned timeoutMs) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        int limit = kWaitForEver;
        if (timeoutMs != 0) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
            constexpr auto kLongest = static_cast<long long>(std::numeric_limits<int>::max());
            limit = static_cast<int>(left < 0 ? 0 : left > kLongest ? kLongest : left);
        }
        const int ready = ::poll(&event, 1, limit);
        if (ready >= 0 || errno != EINTR)
            return ready;
    }
}

bool isOnlyEmpty(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

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

    close();
    errno = 0;
    m_path = path;
    ++m_openings;
    if (!openDevice(path.c_str()))
        return closeAfter(kNoOpen);
    if (::tcgetattr(descriptor(), &m_savedAttributes) != 0)
        return closeAfter(kNoAttributes);

    termios attributes{};
    attributes.c_iflag = INPCK | ISTRIP;
    attributes.c_cflag = sizeFlag | CREAD | CLOCAL;
    if (stopBits == 2)
        attributes.c_cflag |= CSTOPB;
    if (parity != None)
        attributes.c_cflag |= PARENB;
    if (parity == Odd)
        attributes.c_cflag |= PARODD;
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
    if (::tcsetattr(descriptor(), TCSAFLUSH, &attributes) != 0)
        return closeAfter(kNoParameters);
    flushDevice();
    return {};
}

DeviceResult SerialLine::close() {
    if (!isDeviceOpen())
        return {};
    DeviceResult result;
    if (::tcsetattr(descriptor(), TCSAFLUSH, &m_savedAttributes) != 0)
        result = systemError(kNoReset);
    closeDevice();
    m_savedAttributes = {};
    return result;
}

DeviceResult SerialLine::read(unsigned& count, void* buffer, int length, unsigned timeoutMs) {
    return read_locked(count, buffer, length, timeoutMs, nullptr);
}

DeviceResult SerialLine::read_locked(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                                     System::Mutex* mutex) {
    if (!isDeviceOpen())
        return create_commhanderror(kNotOpen, DeviceError::kNotUsable);
    errno = 0;
    int total = 0;
    for (;;) {
        bool arrived = false;
        if (auto ending = waitForData(timeoutMs, mutex, arrived))
            return *std::move(ending);
        if (!arrived || total >= length)
            break;
        const ssize_t received = ::read(descriptor(), static_cast<unsigned char*>(buffer) + total,
                                        static_cast<std::size_t>(length - total));
        if (received < 0 && isOnlyEmpty(errno))
            continue;
        // An end of file is a line that has gone: waiting on would come back at once, for ever.
        if (received == 0)
            errno = EIO;
        if (received <= 0)
            return systemError(kNoRead);
        total += static_cast<int>(received);
        if (total == length || timeoutMs == 0)
            break;
    }
    count = static_cast<unsigned>(total);
    return {};
}

/// Waits for data or the end of the time. A result when the read has to end with it, which may be one
/// without an error code.
std::optional<DeviceResult> SerialLine::waitForData(unsigned timeoutMs, System::Mutex* mutex,
                                                    bool& arrived) {
    const unsigned opening = m_openings;
    pollfd event{descriptor(), POLLIN, 0};
    if (mutex != nullptr)
        mutex->unlock();
    int ready = waitForEvent(event, timeoutMs);
    int error = errno;
    if (mutex != nullptr)
        mutex->lock();
    // Whoever held the mutex meanwhile may have closed the port; its number may stand for another file.
    if (!isDeviceOpen() || m_openings != opening)
        return create_commhanderror(kNotOpen, DeviceError::kNotUsable);
    if (ready > 0 && (event.revents & POLLNVAL) != 0) {
        ready = -1;
        error = EBADF;
    }
    errno = ready < 0 ? error : 0;
    if (ready < 0)
        return systemError(kNoSelect);
    arrived = ready > 0;
    if (arrived && (event.revents & (POLLIN | POLLHUP | POLLERR)) == 0)
        return create_commhanderror(kNoneSet, errno);
    return std::nullopt;
}

DeviceResult SerialLine::write(const void* buffer, int length) {
    if (!isDeviceOpen())
        return create_commhanderror(kNotOpen, DeviceError::kNotUsable);
    ssize_t written = 0;
    do {
        errno = 0;
        written = ::write(descriptor(), buffer, length < 0 ? 0 : static_cast<std::size_t>(length));
    } while (written < 0 && errno == EINTR);
    return written < 0 ? systemError(kNoWrite) : DeviceResult{};
}

DeviceResult SerialLine::flush() {
    if (!isDeviceOpen())
        return create_commhanderror(kFlushNotOpen, DeviceError::kNotUsable);
    errno = 0;
    return flushDevice() ? DeviceResult{} : systemError(kNoFlush);
}

void SerialLine::abandon() {
    forgetDevice();
    m_savedAttributes = {};
}

DeviceResult SerialLine::systemError(const char* lead) const {
    const int error = errno;
    return create_commhanderror(lead + m_path + ": " + std::generic_category().message(error), error);
}

DeviceResult SerialLine::closeAfter(const char* lead) {
    DeviceResult result = systemError(lead);
    close();
    return result;
}
