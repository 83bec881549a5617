#include "support/DeviceControl.h"

#include <cstdarg>

extern "C" {

int __real_ioctl(int, unsigned long, ...);
int __wrap_ioctl(int descriptor, unsigned long request, ...) {
    va_list list;
    va_start(list, request);
    void* const argument = va_arg(list, void*);
    va_end(list);
    const std::optional<int> result = onDeviceControl(descriptor, request, argument);
    return result ? *result : __real_ioctl(descriptor, request, argument);
}

} // extern "C"
