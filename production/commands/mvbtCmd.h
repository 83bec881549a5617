#pragma once

#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <queue>
#include <vector>

#include "platform/DriverLibrary.h"

/// The Bluetooth side of the wireless chip as the pass-through command uses it: packets go out as they
/// are given, and what comes in waits, one packet at a time, until it is fetched. A packet waits as its
/// type and its bytes.
///
/// Called on the commands' thread, unless it says otherwise. A thread of its own reads while the link is
/// open. It is cancelled, and can be so in the driver's read only; then it is joined, and then the
/// driver is closed and unloaded. A reader that does not end in time, as the driver's read never comes
/// to a cancellation point, is left behind: the driver is closed under it, and it unloads the library
/// when it ends. What it reads is lost.
///
/// `open`, `write` and `close` take as long as the driver's functions of that name, since their outcome
/// is the answer. No lock is held inside the driver. One object at a time, since there is one chip.
class mvbtCmd {
public:
    /// What the library exports: six functions, of which the unnamed ones are of no use here.
    struct EntryTable {
        void (*first)();
        int (*open)(const char* path, int flags); ///< a handle, 0 on failure
        int (*close)(int handle);
        /// 0 on success. The bytes belong to the library, which keeps them until the next `read` or
        /// `close`. Waits as long as it likes, best at a cancellation point.
        int (*read)(int handle, unsigned char* type, unsigned char** data, int* length);
        void (*fifth)();
        int (*write)(int handle, int type, const void* data, int length); ///< 0 on success
    };

    mvbtCmd() = default;
    mvbtCmd(const mvbtCmd&) = delete;
    mvbtCmd& operator=(const mvbtCmd&) = delete;
    /// Waits for readers that were left behind.
    ~mvbtCmd();

    /// 0, also when it is open already; -1 when it cannot be had, with the reason on standard error.
    int open();

    /// Closes the driver and loads it anew, without stopping the reader, on whose thread it is called.
    /// 0, or -1 when it cannot be had. Until then the link is as if it were closed.
    int reopen();

    /// Always 0.
    int close();

    /// Drops what waits, then sends a packet. Does nothing while the driver is not loaded; a failure
    /// goes to standard error.
    void write(int type, const void* data, int length);

    /// Waits, then makes `data` the bytes that have come by then: at most `count`, and 247. Returns
    /// their number plus 1; -1, with `data` as it was, while the driver is not loaded.
    int readnbytes(std::vector<unsigned char>& data, unsigned int timeoutMs, unsigned char count);

    /// The same with all bytes that have come. Returns their number, or -1.
    int read(std::vector<unsigned char>& data, unsigned int timeoutMs);

    // --- Any thread. ---

    /// Whether the driver is loaded and open.
    bool checkDll() const;
    const EntryTable* getmvbt() const; ///< null while it is not
    int getbthdl() const;              ///< 0 while it is not

    bool isQueueEmpty() const { return getQueueSize() == 0; }
    std::size_t getQueueSize() const; ///< in bytes
    void clearQueue();

    // --- By whoever holds fifo_mutex. ---

    void pushQueue(unsigned char byte) { fifo.push(byte); }
    /// Only when there is one.
    unsigned char popQueue();

private:
    class FifoLock {
    public:
        explicit FifoLock(pthread_mutex_t& mutex) : m_mutex(mutex) { ::pthread_mutex_lock(&m_mutex); }
        ~FifoLock() { ::pthread_mutex_unlock(&m_mutex); }
        FifoLock(const FifoLock&) = delete;
        FifoLock& operator=(const FifoLock&) = delete;

    private:
        pthread_mutex_t& m_mutex;
    };
    /// What a reading thread and its link know of each other.
    struct Reader {
        mvbtCmd& link;
        bool hasEnded = false;           ///< guarded by the link's m_lock
        System::DriverLibrary library{}; ///< once it was left behind: what it unloads at its end
    };
    /// The three handles, taken away from where others see them. Unloads the library at its end.
    struct Driver {
        System::DriverLibrary dlhdl;
        const EntryTable* mvbt;
        int bthdl;
    };

    /// Whoever uses the driver leaves it at the end.
    class DriverUse {
    public:
        explicit DriverUse(mvbtCmd& link) : m_link(link) {}
        ~DriverUse() { m_link.leaveDriver(); }
        DriverUse(const DriverUse&) = delete;
        DriverUse& operator=(const DriverUse&) = delete;

    private:
        mvbtCmd& m_link;
    };

    bool isLoaded() const; // by whoever holds m_lock
    bool isOpenForGood() const;
    int load();
    Driver takeDriver();
    void unload();
    bool useDriver(); // false when the reader keeps it too long
    void leaveDriver();
    std::vector<unsigned char> fetch(std::size_t most);

    void initializeMutex();    // once; a failure is told and changes nothing
    void startReadingThread(); // does nothing when it runs; a failure is told
    void stopReadingThread();  // cancels it, and gives it time to end
    void joinReader();
    void dismissReader(System::DriverLibrary library);

    // On the reader's thread.
    static void* readingThread(void* reader);
    static void readerEnds(void* reader);
    void readPackets();
    bool readPacket();
    bool waitUntilFetched();
    bool staysReader(std::chrono::milliseconds time);
    bool isReader() const; // by whoever holds m_lock: false once it is to end

    // Process-wide, as the library is. Never destroyed: at the end of the process a thread may be in it.
    static System::DriverLibrary& dlhdl;
    static const EntryTable* mvbt;
    static int bthdl;

    std::queue<unsigned char> fifo;
    mutable pthread_mutex_t fifo_mutex = PTHREAD_MUTEX_INITIALIZER;
    bool mutex_initialized = false;

    pthread_t tidmvbtReader{}; // of m_reader
    bool running = false;      // cleared when the reader is to end

    // Guards everything but the fifo. Never held inside the driver; taken before fifo_mutex.
    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::unique_ptr<Reader> m_reader;
    bool m_isInUse = false; // somebody opens the driver, replaces it, or writes to it
    int m_leftBehind = 0;   // readers that have not ended yet
};
