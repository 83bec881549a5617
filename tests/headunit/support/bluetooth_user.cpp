// bluetooth_user: finds the Bluetooth driver library where the loader looks, opens the unit's chip with
// it, resets the chip, and prints what it answers. The exit status tells how far it came.
#include <dlfcn.h>

#include <cstdio>

namespace {

using Slot = void (*)();
using Open = int (*)(const char*, int);
using Close = int (*)(int);
using Read = int (*)(int, unsigned char*, unsigned char**, int*);
using Write = int (*)(int, int, const void*, int);

constexpr unsigned char kReset[] = {0x03, 0x0C, 0x00};

} // namespace

int main() {
    void* const library = ::dlopen("mv8787bt.so", RTLD_NOW);
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", ::dlerror());
        return 2;
    }
    auto* const slots = static_cast<Slot*>(::dlsym(library, "mvbt_drv_entry"));
    if (slots == nullptr)
        return 3;
    const int handle = reinterpret_cast<Open>(slots[1])("/dev/sdio0", 0);
    if (handle == 0)
        return 4;
    if (reinterpret_cast<Write>(slots[5])(handle, 1, kReset, sizeof kReset) != 0)
        return 5;
    unsigned char type = 0;
    unsigned char* data = nullptr;
    int length = 0;
    if (reinterpret_cast<Read>(slots[3])(handle, &type, &data, &length) != 0)
        return 6;
    std::printf("%02X", type);
    for (int i = 0; i < length; ++i)
        std::printf(" %02X", data[i]);
    std::printf("\n");
    return reinterpret_cast<Close>(slots[2])(handle) == 0 && ::dlclose(library) == 0 ? 0 : 7;
}
