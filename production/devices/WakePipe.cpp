#include "devices/WakePipe.h"

#include <unistd.h>

#include <cerrno>

#include "platform/Descriptors.h"

namespace {

/// Repeats an interrupted transfer; false when it did not move its one byte.
template <typename Transfer>
bool moveByte(Transfer transfer) {
    ssize_t count = 0;
    do {
        count = transfer();
    } while (count < 0 && errno == EINTR);
    return count == 1;
}

} // namespace

void WakePipe::open() {
    System::openPipe(m_readEnd, m_writeEnd);
}

void WakePipe::wake() {
    const char byte = 0;
    if (!m_isAwake && m_writeEnd)
        m_isAwake = moveByte([&] { return ::write(m_writeEnd.get(), &byte, 1); });
}

void WakePipe::heed() {
    char byte = 0;
    if (m_isAwake)
        m_isAwake = !moveByte([&] { return ::read(m_readEnd.get(), &byte, 1); });
}
