// How bytes get through a serial line, and how one waits for them.
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <utility>

#include "devices/Deadline.h"
#include "devices/SerialLine.h"
#include "platform/Uninterrupted.h"

namespace {

constexpr char kNoSelect[] = "Failed to select from ";
constexpr char kNoRead[] = "Failed to read from ";
constexpr char kNoWrite[] = "Failed to write to ";
constexpr char kNotOpen[] = "Serial port not open.";
constexpr char kNoneSet[] = "Select indicated data, but none set";

// How often those look for news who cannot be woken.
constexpr int kBlindWaitMs = 1000;

constexpr short kInput = POLLIN | POLLHUP | POLLERR;

enum Polled { Device, News };

using PollList = std::array<pollfd, 2>;

/// Waits as poll() does, which unlike select() takes any descriptor number; an interruption does not
/// shorten the wait.
int waitForEvents(PollList& polled, const Deadline& deadline) {
    for (;;) {
        int limit = deadline.pollLimit();
        if (polled[News].fd < 0 && (limit < 0 || limit > kBlindWaitMs))
            limit = kBlindWaitMs;
        const int count = ::poll(polled.data(), polled.size(), limit);
        if (count >= 0 || errno != EINTR)
            return count;
    }
}

bool isOnlyFullOrEmpty(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

DeviceResult notOpen() {
    return CommInterface::create_commhanderror(kNotOpen, DeviceError::kNotUsable);
}

} // namespace

DeviceResult SerialLine::read(unsigned& count, void* buffer, int length, unsigned timeoutMs) {
    return read_locked(count, buffer, length, timeoutMs, nullptr);
}

DeviceResult SerialLine::read_locked(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                                     System::Mutex* mutex) {
    if (!isDeviceOpen())
        return notOpen();
    DeviceResult result = readUpTo(count, buffer, length, timeoutMs, mutex);
    handOn();
    return result;
}

DeviceResult SerialLine::readUpTo(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                                  System::Mutex* mutex) {
    errno = 0;
    int total = 0;
    for (Deadline deadline(timeoutMs);;) {
        short ready = 0;
        if (auto ending = waitFor(POLLIN, deadline, mutex, ready))
            return *std::move(ending);
        if ((ready & POLLOUT) != 0)
            drainOnce(); // a line that has gone is noticed by reading
        if ((ready & kInput) == 0) {
            if (deadline.hasPassed())
                break;
            continue;
        }
        if (total >= length)
            break;
        const ssize_t received = ::read(descriptor(), static_cast<unsigned char*>(buffer) + total,
                                        static_cast<std::size_t>(length - total));
        // Another reader of the line may have been quicker.
        if (received < 0 && isOnlyFullOrEmpty(errno))
            continue;
        // An end of file is a line that has gone: waiting on would come back at once, for ever.
        if (received == 0)
            errno = EIO;
        if (received <= 0)
            return systemError(kNoRead);
        total += static_cast<int>(received);
        if (total == length || timeoutMs == 0)
            break;
        deadline = Deadline(timeoutMs);
    }
    count = static_cast<unsigned>(total);
    return {};
}

/// Whoever else waits for the line sees now to what waits for the device.
void SerialLine::handOn() {
    if (!m_output.isEmpty())
        m_opening->wake();
}

/// Waits for one of the events, for room when output waits, for news, or for the end of the time. A
/// result when the transfer has to end with it, which may be one without an error code; otherwise
/// `ready` tells what the device is ready for, if anything.
std::optional<DeviceResult> SerialLine::waitFor(short events, const Deadline& deadline,
                                                System::Mutex* mutex, short& ready) {
    const std::shared_ptr<WakePipe> opening = m_opening;
    if (!m_output.isEmpty())
        events |= POLLOUT;
    PollList polled{{{descriptor(), events, 0}, {opening->descriptor(), POLLIN, 0}}};
    if (mutex != nullptr)
        mutex->unlock();
    int count = waitForEvents(polled, deadline);
    int error = errno;
    if (mutex != nullptr)
        mutex->lock();
    // Whoever held the mutex meanwhile may have closed the port; its number may stand for another file.
    if (m_opening != opening)
        return notOpen();
    if (count > 0 && (polled[Device].revents & POLLNVAL) != 0) {
        count = -1;
        error = EBADF;
    }
    errno = count < 0 ? error : 0;
    if (count < 0)
        return systemError(kNoSelect);
    if (polled[News].revents != 0)
        opening->heed();
    ready = polled[Device].revents;
    if (count > 0 && polled[News].revents == 0 && (ready & (events | kInput)) == 0)
        return create_commhanderror(kNoneSet, errno);
    return std::nullopt;
}

DeviceResult SerialLine::write(const void* buffer, int length) {
    const std::string_view bytes(static_cast<const char*>(buffer),
                                 length < 0 ? 0 : static_cast<std::size_t>(length));
    if (mostWaiting() != 0)
        return post(std::string(bytes));
    if (!isDeviceOpen())
        return notOpen();
    return writeOnce(bytes) < 0 ? systemError(kNoWrite) : DeviceResult{};
}

DeviceResult SerialLine::post(std::string bytes) {
    if (!isDeviceOpen())
        return notOpen();
    if (m_output.size() > mostWaiting()) {
        errno = EAGAIN;
        return systemError(kNoWrite);
    }
    m_output.append(std::move(bytes));
    if (!drainOnce())
        return systemError(kNoWrite);
    handOn();
    return {};
}

DeviceResult SerialLine::transmit(std::string bytes, System::Mutex* mutex) {
    if (!isDeviceOpen())
        return notOpen();
    m_output.append(std::move(bytes));
    DeviceResult result = drainUpTo(m_output.appended(), mutex);
    // What came meanwhile may have woken nobody but this caller, who leaves now.
    handOn();
    return result;
}

DeviceResult SerialLine::drainUpTo(std::uint64_t end, System::Mutex* mutex) {
    for (;;) {
        if (!drainOnce())
            return systemError(kNoWrite);
        if (m_output.taken() >= end)
            return {};
        short ready = 0;
        if (auto ending = waitFor(POLLOUT, Deadline(0), mutex, ready))
            return *std::move(ending);
    }
}

ssize_t SerialLine::writeOnce(std::string_view bytes) {
    return System::uninterrupted([this, bytes] {
        errno = 0;
        return ::write(descriptor(), bytes.data(), bytes.size());
    });
}

/// Hands the device some of what waits for it, if it takes any now. False, with errno, when the line has
/// gone; nothing waits any more then.
bool SerialLine::drainOnce() {
    if (m_output.isEmpty())
        return true;
    constexpr std::size_t kMost = std::size_t{1} << 30; // some systems count in int
    const ssize_t written = writeOnce(m_output.next().substr(0, kMost));
    if (written > 0)
        m_output.take(static_cast<std::size_t>(written));
    if (written >= 0 || isOnlyFullOrEmpty(errno))
        return true;
    const int error = errno;
    m_output.clear();
    errno = error;
    return false;
}
