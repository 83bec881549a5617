#pragma once

#include <optional>

/// What a program's made-up devices answer to `ioctl`, defined by the program that is linked with
/// DeviceControl.cpp; nothing where the system is to be asked.
std::optional<int> onDeviceControl(int descriptor, unsigned long request, void* argument);
