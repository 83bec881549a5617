#include "platform/DeviceManager.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/Uninterrupted.h"
#include "platform/linux/I2cDriver.h"
#include "platform/linux/ManagerSocket.h"

namespace System {
namespace {

constexpr std::uint32_t kTowardsDevice = 0x80000000;
constexpr std::uint32_t kBack = 0x40000000;

bool isSocket(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode);
}

} // namespace

Descriptor openDevice(const char* path) {
    if (ManagerSocket::isAt(path))
        return ManagerSocket::connect(path);
    constexpr int kFlags = O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    return Descriptor(uninterrupted([path] { return ::open(path, kFlags); }));
}

int requestDevice(int device, std::uint32_t command, const std::vector<SendPart>& send,
                  const std::vector<ReplyPart>& reply, ReplySize needed) {
    std::vector<SendPart> input = send;
    if (input.empty() && (command & kTowardsDevice) != 0 && !reply.empty())
        input.push_back({reply.front().bytes, reply.front().size});
    if (isSocket(device))
        return ManagerSocket::request(device, command, input, reply, needed);
    return I2cDriver::request(device, command, input, reply);
}

int requestDevice(int device, std::uint32_t command, void* data, std::size_t size) {
    std::vector<SendPart> send;
    std::vector<ReplyPart> reply;
    if ((command & kTowardsDevice) != 0)
        send.push_back({data, size});
    if ((command & kBack) != 0)
        reply.push_back({data, size});
    return requestDevice(device, command, send, reply);
}

} // namespace System
