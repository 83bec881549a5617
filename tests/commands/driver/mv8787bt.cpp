// A driver library that does what the program that loads it says: it hands everything on to functions
// which that program exports.
#include "driver/BluetoothHooks.h"

namespace {

using Function = void (*)();

int openDevice(const char* path, int flags) {
    return bluetoothOpen(path, flags);
}

int closeDevice(int handle) {
    return bluetoothClose(handle);
}

/// Comes back into the library, so that it has to be there still; also when the thread is cancelled.
struct Visit {
    Visit() { bluetoothEnters(); }
    ~Visit() { bluetoothLeaves(); }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;
};

int readPacket(int handle, unsigned char* type, unsigned char** data, int* length) {
    const Visit visit;
    return bluetoothRead(handle, type, data, length);
}

int writePacket(int handle, int type, const void* data, int length) {
    const Visit visit;
    return bluetoothWrite(handle, type, data, length);
}

__attribute__((destructor)) void unload() {
    bluetoothUnloaded();
}

} // namespace

extern "C" {

extern Function mvbt_drv_entry[6];
Function mvbt_drv_entry[6] = {nullptr,
                              reinterpret_cast<Function>(openDevice),
                              reinterpret_cast<Function>(closeDevice),
                              reinterpret_cast<Function>(readPacket),
                              nullptr,
                              reinterpret_cast<Function>(writePacket)};
}

__attribute__((constructor)) static void load() {
    bluetoothLoaded(mvbt_drv_entry);
}
