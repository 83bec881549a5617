#include "commands/mvbtCmd.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <limits>
#include <thread>
#include <utility>

#include "core/Diagnostics.h"

namespace {

constexpr int kFailed = -1;
constexpr std::size_t kMostBytes = 247;
constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// What opening waits for a reader that opens the driver at that moment.
constexpr std::chrono::milliseconds kPatience{500};
constexpr std::chrono::milliseconds kNoTime{0};

constexpr char kLibrary[] = "mv8787bt.so";
constexpr char kLibraryPath[] = "/usr/lib/mv8787bt.so";
constexpr char kEntry[] = "mvbt_drv_entry";
constexpr char kDevice[] = "/dev/sdio0";

constexpr char kNoLibrary[] = "DLL open failed\n";
constexpr char kNoEntry[] = "Can't find driver entry\n";
constexpr char kNoDevice[] = "MVBT open failed\n";
constexpr char kNoMutex[] =
    "Could not initialize the mutex for BT chip read/write processes, errorcode: %d\n";
constexpr char kWriteFailed[] = "Error during writing on Bluetooth SDIO interface\n";

System::DriverLibrary loadLibrary() {
    System::DriverLibrary library = System::DriverLibrary::load(kLibrary);
    if (!library)
        library = System::DriverLibrary::load(kLibraryPath);
    if (!library) {
        const int error = errno;
        printError("%s: %s\n", kLibraryPath, std::strerror(error));
        printError(kNoLibrary);
    }
    return library;
}

bool isComplete(const mvbtCmd::EntryTable* table) {
    return table != nullptr && table->open != nullptr && table->close != nullptr &&
           table->read != nullptr && table->write != nullptr;
}

void sleepFor(unsigned int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace

System::DriverLibrary& mvbtCmd::dlhdl = *new System::DriverLibrary;
const mvbtCmd::EntryTable* mvbtCmd::mvbt = nullptr;
int mvbtCmd::bthdl = 0;

mvbtCmd::~mvbtCmd() {
    close();
    std::unique_lock<std::mutex> lock(m_lock);
    m_changed.wait(lock, [this] { return m_leftBehind == 0; });
}

int mvbtCmd::open() {
    if (isOpenForGood())
        return 0;
    // A reader that tries to open the driver anew goes on doing so, whatever comes of this.
    if (!useDriver()) {
        printError(kNoDevice);
        return kFailed;
    }
    {
        const DriverUse use(*this);
        if (!checkDll() && load() != 0)
            return kFailed;
    }
    try {
        startReadingThread();
    } catch (...) {
        unload(); // nobody would read from it
        throw;
    }
    return 0;
}

/// Not when a reader is about to replace the driver, or to unload it because it was left behind.
bool mvbtCmd::isOpenForGood() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return isLoaded() && !m_isInUse;
}

int mvbtCmd::load() {
    System::DriverLibrary library = loadLibrary();
    if (!library)
        return kFailed;
    const auto* table = static_cast<const EntryTable*>(library.symbol(kEntry));
    if (!isComplete(table)) {
        printError(kNoEntry);
        return kFailed;
    }
    const int handle = table->open(kDevice, 0);
    if (handle == 0) {
        printError(kNoDevice);
        return kFailed;
    }
    initializeMutex();
    const std::lock_guard<std::mutex> lock(m_lock);
    dlhdl = std::move(library);
    mvbt = table;
    bthdl = handle;
    clearQueue();
    return 0;
}

int mvbtCmd::reopen() {
    {
        // A write that runs comes to its end first.
        std::unique_lock<std::mutex> lock(m_lock);
        m_changed.wait(lock, [this] { return !m_isInUse || !isReader(); });
        if (!isReader())
            return kFailed;
        m_isInUse = true;
    }
    const DriverUse use(*this);
    unload();
    const int result = load();
    // Whoever has closed the link meanwhile has found nothing to close.
    if (!staysReader(kNoTime))
        unload();
    return result;
}

int mvbtCmd::close() {
    stopReadingThread();
    Driver driver = takeDriver();
    if (driver.dlhdl)
        driver.mvbt->close(driver.bthdl);
    dismissReader(std::move(driver.dlhdl));
    return 0;
}

void mvbtCmd::unload() {
    const Driver driver = takeDriver();
    if (driver.dlhdl)
        driver.mvbt->close(driver.bthdl);
}

mvbtCmd::Driver mvbtCmd::takeDriver() {
    const std::lock_guard<std::mutex> lock(m_lock);
    return {std::move(dlhdl), std::exchange(mvbt, nullptr), std::exchange(bthdl, 0)};
}

bool mvbtCmd::useDriver() {
    std::unique_lock<std::mutex> lock(m_lock);
    if (!m_changed.wait_for(lock, kPatience, [this] { return !m_isInUse; }))
        return false;
    m_isInUse = true;
    return true;
}

void mvbtCmd::leaveDriver() {
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_isInUse = false;
    }
    m_changed.notify_all();
}

void mvbtCmd::write(int type, const void* data, int length) {
    const EntryTable* table = nullptr;
    int handle = 0;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        // Whoever uses it otherwise is the reader, which is about to replace it.
        if (!isLoaded() || m_isInUse)
            return;
        m_isInUse = true;
        table = mvbt;
        handle = bthdl;
    }
    const DriverUse use(*this);
    clearQueue();
    if (table->write(handle, type, data, length) != 0)
        printError(kWriteFailed);
}

int mvbtCmd::readnbytes(std::vector<unsigned char>& data, unsigned int timeoutMs, unsigned char count) {
    if (!checkDll())
        return kFailed;
    sleepFor(timeoutMs);
    data = fetch(std::min<std::size_t>(count, kMostBytes));
    return static_cast<int>(data.size()) + 1;
}

int mvbtCmd::read(std::vector<unsigned char>& data, unsigned int timeoutMs) {
    if (!checkDll())
        return kFailed;
    sleepFor(timeoutMs);
    data = fetch(kAll);
    return static_cast<int>(data.size());
}

std::vector<unsigned char> mvbtCmd::fetch(std::size_t most) {
    const FifoLock lock(fifo_mutex);
    std::vector<unsigned char> bytes(std::min(most, fifo.size()));
    for (unsigned char& byte : bytes)
        byte = popQueue();
    return bytes;
}

bool mvbtCmd::isLoaded() const {
    return dlhdl && mvbt != nullptr && bthdl != 0;
}

bool mvbtCmd::checkDll() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return isLoaded();
}

const mvbtCmd::EntryTable* mvbtCmd::getmvbt() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return mvbt;
}

int mvbtCmd::getbthdl() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return bthdl;
}

void mvbtCmd::initializeMutex() {
    if (mutex_initialized)
        return;
    const int error = ::pthread_mutex_init(&fifo_mutex, nullptr);
    mutex_initialized = error == 0;
    if (error != 0)
        printError(kNoMutex, error);
}

unsigned char mvbtCmd::popQueue() {
    const unsigned char byte = fifo.front();
    fifo.pop();
    return byte;
}

std::size_t mvbtCmd::getQueueSize() const {
    const FifoLock lock(fifo_mutex);
    return fifo.size();
}

void mvbtCmd::clearQueue() {
    const FifoLock lock(fifo_mutex);
    while (!fifo.empty()) // a new queue would take memory
        fifo.pop();
}
