#include "frontends/SharedPort.h"

bool SharedPort::isTaken(const DeviceResult& result, bool wasOpen) {
    return wasOpen && result.code == DeviceError::kNotUsable;
}

DeviceResult SharedPort::receive(Comm::Handle& port, bool wasOpen, unsigned& count,
                                 unsigned char* buffer, std::size_t length, unsigned timeoutMs) {
    DeviceResult result = port.receive(count, buffer, static_cast<int>(length), timeoutMs);
    if (result.failed() && !isTaken(result, wasOpen))
        Comm::Handle::reportReadFailure();
    return result;
}
