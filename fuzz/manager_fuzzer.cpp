// The simulated managers of devices, behind their sockets: each packet, whatever it holds and whoever
// comes and goes between, is answered by one that has room where it goes, and a read of the Bluetooth
// chip by one at most.

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "Expect.h"
#include "Input.h"
#include "devices/BluetoothManager.h"
#include "devices/I2cManager.h"
#include "devices/WlanManager.h"
#include "serial/EventLoop.h"
#include "unit/UnitFolder.h"
#include "wire/Descriptor.h"
#include "wire/LittleEndian.h"

namespace {

constexpr std::array<const char*, 3> kNodes = {headunit::I2cManager::kNode, headunit::WlanManager::kNode,
                                               headunit::BluetoothRequests::kNode};
constexpr std::size_t kRequestHead = 16;
constexpr std::size_t kResult = 4;

const headunit::UnitFolder& folder() {
    static const headunit::UnitFolder only = headunit::UnitFolder::temporary();
    return only;
}

/// All of them at work, on a thread of their own.
class Managers {
public:
    Managers() {
        headunit::UnitFolder tree = headunit::UnitFolder::kept(folder().path());
        m_bus.install(tree);
        m_wlan.install(tree);
        m_bluetooth.install(tree);
        m_thread = std::thread([this] { m_loop.run(); });
    }
    Managers(const Managers&) = delete;
    Managers& operator=(const Managers&) = delete;
    ~Managers() {
        m_loop.stop();
        m_thread.join();
    }

private:
    headunit::EventLoop m_loop;
    headunit::I2cManager m_bus{m_loop};
    headunit::WlanManager m_wlan{m_loop};
    headunit::BluetoothManager m_bluetooth{m_loop};
    std::thread m_thread;
};

/// A connection to one of the nodes.
class Client {
public:
    explicit Client(const std::string& unitPath)
        : m_socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        const std::string path = folder().hostPath(unitPath);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        if (::connect(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            fail("nobody listens at " + path);
    }

    void send(std::string_view packet) {
        if (::send(m_socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(packet.size()))
            fail("a manager does not take " + readable(packet));
    }

    std::string receive() {
        constexpr int kPatience = 60000; // ms
        pollfd event{m_socket.get(), POLLIN, 0};
        int ready = 0;
        do
            ready = ::poll(&event, 1, kPatience);
        while (ready < 0 && errno == EINTR); // a fuzzer has its clock
        expect(ready == 1, "A request is answered");
        const ssize_t size = ::recv(m_socket.get(), nullptr, 0, MSG_PEEK | MSG_TRUNC);
        expect(size > 0, "A manager does not hang up");
        std::string packet(static_cast<std::size_t>(size), '\0');
        expectSame(size, ::recv(m_socket.get(), packet.data(), packet.size(), 0),
                   "the size of an answer");
        return packet;
    }

    bool isWaiting = false; ///< for an answer that comes in its time

private:
    System::Descriptor m_socket;
};

bool isRequest(const std::string& packet) {
    return packet.size() >= kRequestHead && littleEndian32(packet, 4) == packet.size() - kRequestHead &&
           littleEndian32(packet, 12) == 0;
}

void expectAnswer(const std::string& packet, const std::string& answer) {
    expect(answer.size() >= kResult, "An answer begins with its result");
    const auto result = static_cast<std::int32_t>(littleEndian32(answer, 0));
    if (!isRequest(packet))
        expectSame<int>(EINVAL, result, "what is no request is answered with");
    if (result != 0)
        return expectSame<std::size_t>(kResult, answer.size(), "the length of an error's answer");
    expect(answer.size() - kResult <= littleEndian32(packet, 8), "An answer has room where it goes");
}

/// What follows is a packet; what it says of its own size mostly is right.
std::string packetFrom(Input& input, bool isAsItIs) {
    const std::size_t size = input.byte();
    std::string packet(input.bytes(size));
    if (isAsItIs || packet.size() < kRequestHead)
        return packet;
    std::string sizes;
    appendLittleEndian32(sizes, static_cast<std::uint32_t>(packet.size() - kRequestHead));
    packet.replace(4, sizes.size(), sizes);
    return packet.replace(12, 4, 4, '\0');
}

void ask(Client& client, const std::string& packet, bool mayWait) {
    client.send(packet);
    client.isWaiting =
        mayWait && isRequest(packet) && littleEndian32(packet, 0) == headunit::BluetoothRequests::kRead;
    if (!client.isWaiting)
        expectAnswer(packet, client.receive());
}

} // namespace

/// In one byte which client of which manager does what, and then what it sends.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kClients = 3;
    constexpr std::size_t kBluetooth = 2;
    const Managers managers;
    std::array<std::array<std::unique_ptr<Client>, kClients>, kNodes.size()> clients;
    Input input(data, size);
    while (!input.isEmpty()) {
        const unsigned what = input.byte();
        const std::size_t node = what % kNodes.size();
        std::unique_ptr<Client>& client = clients[node][(what >> 2) % kClients];
        const std::string packet = packetFrom(input, (what & 0x80) != 0);
        if ((what & 0x60) == 0x60)
            client.reset();
        else if (client == nullptr)
            client = std::make_unique<Client>(kNodes[node]);
        if (client != nullptr && !client->isWaiting)
            ask(*client, packet, node == kBluetooth);
    }
    return 0;
}
