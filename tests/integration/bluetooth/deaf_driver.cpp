// A Bluetooth driver library whose chip never says a word: its read waits at a cancellation point for
// ever, also when its device is closed.
#include <fcntl.h>
#include <unistd.h>

namespace {

using Function = void (*)();

/// The descriptor is the handle.
int openDevice(const char* /*path*/, int /*flags*/) {
    const int device = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    return device > 0 ? device : 0;
}

int closeDevice(int handle) {
    return ::close(handle);
}

int readPacket(int /*handle*/, unsigned char* /*type*/, unsigned char** /*data*/, int* /*length*/) {
    for (;;)
        ::pause();
}

int writePacket(int /*handle*/, int /*type*/, const void* /*data*/, int /*length*/) {
    return 0;
}

} // namespace

extern "C" {

extern const Function mvbt_drv_entry[6];
const Function mvbt_drv_entry[6] = {nullptr,
                                    reinterpret_cast<Function>(openDevice),
                                    reinterpret_cast<Function>(closeDevice),
                                    reinterpret_cast<Function>(readPacket),
                                    nullptr,
                                    reinterpret_cast<Function>(writePacket)};
}
