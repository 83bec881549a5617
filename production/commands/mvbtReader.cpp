// The thread that reads from the Bluetooth driver, from its start to its end.
#include <chrono>
#include <new>
#include <utility>

#include "commands/mvbtCmd.h"
#include "core/Diagnostics.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kNoTime{0};
constexpr milliseconds kFetchPause{10};
constexpr milliseconds kRetryPause{500};
// What a cancelled reader has to come to its end. It takes next to no time, unless the driver's read
// does not know of cancellation or the driver is being opened anew.
constexpr milliseconds kPatience{500};

// No packet of this interface is longer: four bytes of
// header, and as many bytes as sixteen bits can say.
constexpr int kLongestPacket = 4 + 0xFFFF;

constexpr char kNoThread[] = "Could not create the reading thread, returncode %d\n";
constexpr char kNoDriver[] = "No driver dll for mvbt found";
constexpr char kReadFailed[] = "mvbt_read failed, the reading thread could not read mvbt";
constexpr char kReopening[] = "Trying to close and reopen the interface";

struct Packet {
    unsigned char type = 0;
    unsigned char* bytes = nullptr;
    int length = 0;
};

/// The one place where the reader can be cancelled: it holds no lock and owns nothing here. False when
/// the driver fails, or says something that cannot be a packet.
bool readCancellably(const mvbtCmd::EntryTable& driver, int handle, Packet& packet) {
    ::pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, nullptr);
    ::pthread_testcancel();
    const int result = driver.read(handle, &packet.type, &packet.bytes, &packet.length);
    ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    return result == 0 && packet.length >= 0 && packet.length <= kLongestPacket &&
           (packet.bytes != nullptr || packet.length == 0);
}

} // namespace

void mvbtCmd::startReadingThread() {
    std::unique_lock<std::mutex> lock(m_lock);
    if (m_reader)
        return;
    m_reader = std::make_unique<Reader>(Reader{*this});
    const int error = ::pthread_create(&tidmvbtReader, nullptr, readingThread, m_reader.get());
    running = error == 0;
    if (running)
        return;
    m_reader.reset();
    lock.unlock();
    printError(kNoThread, error);
}

void mvbtCmd::stopReadingThread() {
    std::unique_lock<std::mutex> lock(m_lock);
    running = false;
    if (!m_reader)
        return;
    m_changed.notify_all();
    ::pthread_cancel(tidmvbtReader);
    if (!m_changed.wait_for(lock, kPatience, [this] { return m_reader->hasEnded; }))
        return;
    lock.unlock();
    joinReader();
}

/// Of one that has ended.
void mvbtCmd::joinReader() {
    ::pthread_join(tidmvbtReader, nullptr);
    m_reader.reset();
}

/// What becomes of a reader that did not end in time: closing the driver may have ended it; else it is
/// left behind, with the library to unload.
void mvbtCmd::dismissReader(System::DriverLibrary library) {
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        if (!m_reader)
            return;
        if (!m_reader->hasEnded) {
            ::pthread_detach(tidmvbtReader);
            m_reader.release()->library = std::move(library);
            ++m_leftBehind;
            return;
        }
    }
    joinReader();
}

void* mvbtCmd::readingThread(void* reader) {
    ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    // Not an object's destructor: not every system unwinds the stack of a cancelled thread.
    pthread_cleanup_push(readerEnds, reader);
    static_cast<Reader*>(reader)->link.readPackets();
    pthread_cleanup_pop(1);
    return nullptr;
}

void mvbtCmd::readerEnds(void* reader) {
    auto* const self = static_cast<Reader*>(reader);
    mvbtCmd& link = self->link;
    std::unique_ptr<Reader> left; // goes after the lock, with the library
    const std::lock_guard<std::mutex> lock(link.m_lock);
    self->hasEnded = true;
    if (link.m_reader.get() != self) {
        left.reset(self);
        --link.m_leftBehind;
    }
    link.m_changed.notify_all();
}

void mvbtCmd::readPackets() {
    if (!checkDll()) {
        printDiagnostic(kNoDriver);
        return;
    }
    while (waitUntilFetched()) {
        if (readPacket())
            continue;
        if (!staysReader(kNoTime))
            return;
        printDiagnostic(kReadFailed);
        printDiagnostic(kReopening);
        reopen();
        staysReader(kRetryPause);
    }
}

bool mvbtCmd::readPacket() {
    const EntryTable* driver = nullptr;
    int handle = 0;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        if (!isReader())
            return false;
        driver = mvbt;
        handle = bthdl;
    }
    Packet packet;
    if (driver == nullptr || !readCancellably(*driver, handle, packet))
        return false;
    const std::lock_guard<std::mutex> lock(m_lock);
    if (!isReader())
        return false;
    try {
        const FifoLock fifoLock(fifo_mutex);
        pushQueue(packet.type);
        for (int at = 0; at < packet.length; ++at)
            pushQueue(packet.bytes[at]);
        return true;
    } catch (const std::bad_alloc&) {
        clearQueue(); // it was empty before
        return false;
    }
}

bool mvbtCmd::waitUntilFetched() {
    while (!isQueueEmpty())
        if (!staysReader(kFetchPause))
            return false;
    return staysReader(kNoTime);
}

/// False, and at once, when it is to end.
bool mvbtCmd::staysReader(milliseconds time) {
    std::unique_lock<std::mutex> lock(m_lock);
    return !m_changed.wait_for(lock, time, [this] { return !isReader(); });
}

bool mvbtCmd::isReader() const {
    return running && ::pthread_equal(tidmvbtReader, ::pthread_self()) != 0;
}
