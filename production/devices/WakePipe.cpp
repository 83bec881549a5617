#include "devices/WakePipe.h"

#include <unistd.h>

#include "platform/Descriptors.h"
#include "platform/Uninterrupted.h"

namespace {

/// False when the transfer did not move its one byte.
template <typename Transfer>
bool moveByte(const Transfer& transfer) {
    return System::uninterrupted(transfer) == 1;
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
