// mv8787bt.so: the driver library of the unit's Bluetooth chip. It exports one table of plain functions,
// mvbt_drv_entry, by which a program opens the chip, writes packets to it and reads the chip's.
#include <cerrno>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "DriverLink.h"

namespace {

using headunit::DriverLink;

constexpr int kNoHandle = 0;
constexpr int kDone = 0;
constexpr int kFailed = -1;

/// The chips that are open, by their handles. Who is in the middle of a call keeps his one alive.
class Handles {
public:
    int add(std::shared_ptr<DriverLink> link) {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_links[++m_last] = std::move(link);
        return m_last;
    }

    std::shared_ptr<DriverLink> find(int handle) {
        const std::lock_guard<std::mutex> lock(m_lock);
        const auto link = m_links.find(handle);
        return link == m_links.end() ? nullptr : link->second;
    }

    std::shared_ptr<DriverLink> take(int handle) {
        const std::lock_guard<std::mutex> lock(m_lock);
        const auto link = m_links.find(handle);
        if (link == m_links.end())
            return nullptr;
        std::shared_ptr<DriverLink> taken = std::move(link->second);
        m_links.erase(link);
        return taken;
    }

private:
    std::mutex m_lock;
    std::map<int, std::shared_ptr<DriverLink>> m_links;
    int m_last = kNoHandle;
};

Handles& handles() {
    static Handles all;
    return all;
}

int badHandle() {
    errno = EBADF;
    return kFailed;
}

/// Whoever calls knows no exceptions: one is a failure. A thread may be cancelled in here.
template <typename Call>
int guarded(int failure, const Call& call) {
    try {
        return call();
    } catch (const std::exception&) {
        errno = ENOMEM;
        return failure;
    }
}

int open(const char* path) {
    std::shared_ptr<DriverLink> link = DriverLink::open(path);
    return link ? handles().add(std::move(link)) : kNoHandle;
}

int read(DriverLink& link, unsigned char* type, unsigned char** data, int* length) {
    const std::string_view packet = link.read();
    if (packet.empty())
        return kFailed;
    *type = static_cast<unsigned char>(packet.front());
    *data = reinterpret_cast<unsigned char*>(const_cast<char*>(packet.data() + 1));
    *length = static_cast<int>(packet.size() - 1);
    return kDone;
}

} // namespace

extern "C" {

/// A handle, or 0 with errno. `flags` have no meaning.
static int openChip(const char* path, int /*flags*/) {
    return guarded(kNoHandle, [path] { return open(path); });
}

/// Whoever waits in a read or a write on the handle fails. 0, or -1 for no handle.
static int closeChip(int handle) {
    const std::shared_ptr<DriverLink> link = handles().take(handle);
    if (!link)
        return badHandle();
    link->hangUp();
    return kDone;
}

/// Blocks until a packet has come. 0, with its type and its bytes, which stay until the handle is read
/// again or closed; or -1, with errno.
static int readChip(int handle, unsigned char* type, unsigned char** data, int* length) {
    const std::shared_ptr<DriverLink> link = handles().find(handle);
    if (!link)
        return badHandle();
    return guarded(kFailed, [&] { return read(*link, type, data, length); });
}

/// 0, or -1 with errno.
static int writeChip(int handle, int type, const void* data, int length) {
    const std::shared_ptr<DriverLink> link = handles().find(handle);
    if (!link)
        return badHandle();
    if (length < 0) {
        errno = EINVAL;
        return kFailed;
    }
    const std::string_view bytes(static_cast<const char*>(data), static_cast<std::size_t>(length));
    return guarded(
        kFailed, [&] { return link->write(static_cast<unsigned char>(type), bytes) ? kDone : kFailed; });
}

using Slot = void (*)();

__attribute__((visibility("default"))) extern const Slot mvbt_drv_entry[];

// Slots 0 and 4 are not in use.
const Slot mvbt_drv_entry[] = {nullptr,
                               reinterpret_cast<Slot>(openChip),
                               reinterpret_cast<Slot>(closeChip),
                               reinterpret_cast<Slot>(readChip),
                               nullptr,
                               reinterpret_cast<Slot>(writeChip)};

} // extern "C"
