#pragma once

#include <sys/stat.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/AbstractCmd.h"
#include "devices/DeviceResult.h"
#include "runtime/Mutex.h"
#include "wire/Descriptor.h"

/// Moves whole blocks between the unit's block devices and the scratch buffer. A device that one request
/// has opened stays open until another closes it.
class mCmd : public AbstractCmd {
public:
    /// One block device. Block numbers and sizes are the device's own.
    class Handle {
    public:
        Handle(int type, std::string path, bool writable);

        DeviceResult open();
        DeviceResult close();

        /// Moves `blockCount` blocks from `firstBlock` on, with one transfer. `space` is how many bytes
        /// the buffer has; `bytes` is how many have been moved, which may be fewer than wanted. The
        /// device's last block is out of reach.
        DeviceResult read(unsigned& bytes, unsigned firstBlock, int blockCount, void* buffer, int space);
        DeviceResult write(unsigned& bytes, unsigned firstBlock, int blockCount, void* buffer,
                           int space);

        /// Takes the device's block size and count from the system.
        DeviceResult prepareStatInfo();

    private:
        struct Extent {
            std::uint32_t position; ///< in bytes; wraps at 4 GiB
            std::size_t length;     ///< in bytes
        };

        bool isInserted() const;
        DeviceResult check(unsigned firstBlock, int blockCount, int space, bool writing, Extent& extent);
        DeviceResult seek(const Extent& extent) const;

        System::Descriptor m_device;
        int m_type;
        std::string m_path;
        bool m_writable;
        struct stat m_status {};
    };

    static mCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    static std::string getTypeName(int type);
    static DeviceResult create_deverror(std::string message, int code);

    /// Sets `*handle` on success only.
    DeviceResult device(Handle** handle, unsigned char type, unsigned char id);
    Answer open(Handle* handle);
    Answer close(Handle* handle);
    /// `offset` is in bytes, into the scratch buffer. `count` becomes the number of bytes moved, in four
    /// bytes, most significant first.
    Answer read(Handle* handle, unsigned firstBlock, unsigned blockCount, unsigned offset,
                std::vector<unsigned char>& count);
    Answer write(Handle* handle, unsigned firstBlock, unsigned blockCount, unsigned offset,
                 std::vector<unsigned char>& count);

private:
    mCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);

    void addHardDisk(unsigned id, const char* path);
    void addDevice(int type, unsigned id, const char* path, bool writable);

    // By type and id; the handles live as long as the command does, which is to the end of the process.
    std::map<int, std::map<unsigned, Handle*>> m_devices;
    // By path, where in the table above its handle is.
    std::map<std::string, std::pair<int, unsigned>> m_positions;
    System::Mutex m_mutex{System::Mutex::Normal};

    static System::Mutex s_singleton_mutex;
};
