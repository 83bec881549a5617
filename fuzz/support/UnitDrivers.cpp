#include "support/UnitDrivers.h"

#include <pthread.h>
#include <sys/socket.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "commands/mvbtCmd.h"
#include "devices/I2cBus.h"
#include "devices/WlanChip.h"
#include "platform/DeviceManager.h"
#include "platform/DriverLibrary.h"
#include "platform/NetworkStack.h"
#include "platform/Terminal.h"
#include "wire/LittleEndian.h"

namespace {

constexpr std::size_t kGreeting = 300;

/// All that a station can change.
struct Unit {
    unsigned faults = 0;
    headunit::I2cBus bus;
    headunit::WlanChip chip;
    unsigned busRequests = 0;
    unsigned chipRequests = 0;
    std::vector<System::Descriptor> lineEnds; // of the peers

    bool has(unsigned fault) const { return (faults & fault) != 0; }
};

std::unique_ptr<Unit>& unit() {
    static auto only = std::make_unique<Unit>();
    return only;
}

// --- Managers ---

template <typename Parts>
std::size_t bytesIn(const Parts& parts) {
    std::size_t bytes = 0;
    for (const auto& part : parts)
        bytes += part.size;
    return bytes;
}

std::string packetFor(std::uint32_t command, const std::vector<System::SendPart>& send,
                      std::size_t room) {
    std::string packet;
    appendLittleEndian32(packet, command);
    appendLittleEndian32(packet, static_cast<std::uint32_t>(bytesIn(send)));
    appendLittleEndian32(packet, static_cast<std::uint32_t>(room));
    appendLittleEndian32(packet, 0);
    for (const System::SendPart& part : send)
        packet.append(static_cast<const char*>(part.bytes), part.size);
    return packet;
}

/// The result; when that is 0, the parts have what came.
int take(std::string_view answer, const std::vector<System::ReplyPart>& reply,
         System::ReplySize needed) {
    const auto result = static_cast<std::int32_t>(littleEndian32(answer, 0));
    answer.remove_prefix(sizeof result);
    if (result != 0)
        return result;
    if (needed == System::ReplySize::Whole && answer.size() < bytesIn(reply))
        return EPROTO;
    for (const System::ReplyPart& part : reply) {
        const std::size_t size = std::min(part.size, answer.size());
        std::copy_n(answer.data(), size, static_cast<char*>(part.bytes));
        answer.remove_prefix(size);
    }
    return 0;
}

void orderWireless() {
    constexpr std::uint16_t kRefusal = 0x1234;
    constexpr std::uint16_t kTooMuch = 250;
    constexpr std::uint16_t kFarTooMuch = 60000;
    switch (unit()->chipRequests++ % 5) {
        case 0:
            return unit()->chip.orderRefusal(kRefusal, 1);
        case 1:
            return unit()->chip.orderSize(kTooMuch, 1);
        case 2:
            return unit()->chip.orderSize(kFarTooMuch, 1);
        case 3:
            return unit()->chip.orderResult(EIO, 1);
        default:
            return;
    }
}

// --- The Bluetooth driver ---

void nothing() {}

int openChip(const char*, int) {
    return 1;
}

int closeChip(int) {
    return 0;
}

void unlock(void* mutex) {
    ::pthread_mutex_unlock(static_cast<pthread_mutex_t*>(mutex));
}

/// Until the thread is cancelled, in the one way of waiting in which a sanitizer understands that.
int readChip(int, unsigned char*, unsigned char**, int*) {
    static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    static pthread_cond_t never = PTHREAD_COND_INITIALIZER;
    ::pthread_mutex_lock(&mutex);
    pthread_cleanup_push(unlock, &mutex);
    for (;;)
        ::pthread_cond_wait(&never, &mutex);
    pthread_cleanup_pop(1);
}

/// Fails for the type that no packet has.
int writeChip(int, int type, const void*, int) {
    return type == 0 ? -1 : 0;
}

mvbtCmd::EntryTable driver = {nothing, openChip, closeChip, readChip, nothing, writeChip};

} // namespace

void UnitDrivers::renew(unsigned faults) {
    unit() = std::make_unique<Unit>();
    unit()->faults = faults;
}

namespace System {

Descriptor openDevice(const char*) {
    return Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
}

int requestDevice(int, std::uint32_t command, const std::vector<SendPart>& send,
                  const std::vector<ReplyPart>& reply, ReplySize needed) {
    if (unit()->has(UnitDrivers::BusFails) && ++unit()->busRequests % 3 == 0)
        unit()->bus.orderResult(EIO, 1);
    std::vector<SendPart> input = send;
    if (input.empty())
        input.push_back({reply.front().bytes, reply.front().size});
    return take(unit()->bus.answer(unit().get(), packetFor(command, input, bytesIn(reply))), reply,
                needed);
}

int requestDevice(int device, std::uint32_t command, void* data, std::size_t size) {
    return requestDevice(device, command, {{data, size}}, {});
}

Descriptor openDatagramSocket() {
    return Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
}

int messageInterface(int, const char*, const std::vector<ReplyPart>& parts) {
    if (unit()->has(UnitDrivers::WirelessOdd))
        orderWireless();
    std::vector<SendPart> send;
    send.reserve(parts.size());
    for (const ReplyPart& part : parts)
        send.push_back({part.bytes, part.size});
    const int result =
        take(unit()->chip.answer(packetFor(0, send, bytesIn(parts))), parts, ReplySize::Any);
    if (result == 0)
        return 0;
    errno = std::abs(result);
    return -errno;
}

Descriptor openTerminal(const char*) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0)
        return {};
    Descriptor peer(ends[1]);
    const std::string greeting(kGreeting, 'x');
    if (::send(peer.get(), greeting.data(), greeting.size(), MSG_NOSIGNAL) < 0)
        std::abort();
    if (!unit()->has(UnitDrivers::LinesHangUp))
        unit()->lineEnds.push_back(std::move(peer));
    return Descriptor(ends[0]);
}

std::FILE* openTerminalStream(const char* path) {
    return ::fdopen(openTerminal(path).release(), "rb+");
}

bool setOutputSpeed(termios&, unsigned) {
    return true;
}

bool setInputSpeed(termios&, unsigned) {
    return true;
}

bool makeRaw(termios&) {
    return true;
}

DriverLibrary DriverLibrary::load(const char*) {
    errno = ENOENT;
    return DriverLibrary(unit()->has(UnitDrivers::WirelessOdd) ? nullptr : &driver);
}

DriverLibrary::~DriverLibrary() {
    m_handle = nullptr; // there is nothing to unload
}

void* DriverLibrary::symbol(const char*) const {
    return m_handle;
}

} // namespace System

// A line here is no terminal.
extern "C" {

int __wrap_tcgetattr(int, termios* attributes) {
    *attributes = {};
    return 0;
}

int __wrap_tcsetattr(int, int, const termios*) {
    return 0;
}

int __wrap_tcflush(int, int) {
    return 0;
}
}
