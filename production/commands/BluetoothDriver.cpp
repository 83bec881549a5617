#include "commands/BluetoothDriver.h"

#include <atomic>
#include <cstdio>
#include <utility>

namespace {

constexpr char kLibrary[] = "mv8787bt.so";
constexpr char kLibraryPath[] = "/usr/lib/mv8787bt.so";
constexpr char kEntry[] = "mvbt_drv_entry";
constexpr char kDevice[] = "/dev/sdio0";

constexpr char kNoLibrary[] = "DLL open failed\n";
constexpr char kNoEntry[] = "Can't find driver entry\n";
constexpr char kNoDevice[] = "MVBT open failed\n";

// No packet of this interface is longer: four bytes of header, and as many bytes as sixteen bits can
// say.
constexpr int kLongestPacket = 4 + 0xFFFF;

// A library that does not let go of its devices is not given ever more of them.
constexpr int kMostDevices = 4;
std::atomic<int> s_devices{0};

System::DriverLibrary load() {
    System::DriverLibrary library = System::DriverLibrary::load(kLibrary);
    if (!library)
        library = System::DriverLibrary::load(kLibraryPath);
    if (!library) {
        std::perror(kLibraryPath);
        std::fputs(kNoLibrary, stderr);
    }
    return library;
}

} // namespace

std::unique_ptr<BluetoothDriver> BluetoothDriver::open() {
    System::DriverLibrary library = load();
    if (!library)
        return nullptr;
    const auto* mvbt = static_cast<const EntryTable*>(library.symbol(kEntry));
    if (!isComplete(mvbt)) {
        std::fputs(kNoEntry, stderr);
        return nullptr;
    }
    const int bthdl = s_devices < kMostDevices ? mvbt->open(kDevice, 0) : 0;
    if (bthdl == 0) {
        std::fputs(kNoDevice, stderr);
        return nullptr;
    }
    return std::unique_ptr<BluetoothDriver>(new BluetoothDriver(std::move(library), mvbt, bthdl));
}

bool BluetoothDriver::isComplete(const EntryTable* mvbt) {
    return mvbt != nullptr && mvbt->open != nullptr && mvbt->close != nullptr && mvbt->read != nullptr &&
           mvbt->write != nullptr;
}

BluetoothDriver::BluetoothDriver(System::DriverLibrary dlhdl, const EntryTable* mvbt, int bthdl)
    : m_dlhdl(std::move(dlhdl)), m_mvbt(mvbt), m_bthdl(bthdl) {
    ++s_devices;
}

BluetoothDriver::~BluetoothDriver() {
    close();
    --s_devices;
}

bool BluetoothDriver::read(Packet& packet) const {
    unsigned char type = 0;
    unsigned char* bytes = nullptr;
    int length = 0;
    if (m_mvbt->read(m_bthdl, &type, &bytes, &length) != 0)
        return false;
    if (length < 0 || length > kLongestPacket || (bytes == nullptr && length != 0))
        return false;
    packet = {type, bytes, static_cast<std::size_t>(length)};
    return true;
}

bool BluetoothDriver::write(int type, const void* data, int length) const {
    return m_mvbt->write(m_bthdl, type, data, length) == 0;
}

void BluetoothDriver::close() {
    if (!std::exchange(m_isOpen, false))
        return;
    m_mvbt->close(m_bthdl);
}
