// The WLAN side of the pass-through command.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "commands/SWriteCmd.h"
#include "commands/uap_ioctl.h"
#include "wire/LittleEndian.h"

namespace {

constexpr char kDriverNode[] = "/dev/shmem/mv8787wl";

constexpr unsigned int kNoMemory = 0x0A000100;

constexpr char kCannotOpen[] = "cannot open %s for rw";
constexpr char kNotOpen[] = "you need to open port first";
constexpr char kNoSendBuffer[] = "failed to alloc%d bytes";
constexpr char kNoResponseStore[] = "couldn't alloc %d";
constexpr char kSizeOutOfRange[] = "Size of a host command must be in Range [%d,%d] but is %d";
constexpr char kReplyTooLong[] = "Response of %d bytes is longer than the allowed %d bytes";
constexpr char kRefused[] = "cmd.result was %d";
constexpr char kFailed[] = "error from uap_ioctl(): %s";

constexpr int kMoreNeeded = -1;
constexpr int kReplied = 1;

constexpr std::size_t kHeader = 8;
constexpr std::size_t kSizeAt = 2;
constexpr std::size_t kSizeEnd = 4;
constexpr std::size_t kResultAt = 6;

// The driver's own field, then the command.
constexpr std::size_t kCommandAt = 4;
constexpr std::size_t kIoctlBuffer = 259;

Answer notOpen() {
    return genericError(kNotOpen);
}

/// False when there is no memory for it.
bool allocate(std::unique_ptr<unsigned char[]>& block, std::size_t size) {
    if (!block)
        block.reset(new (std::nothrow) unsigned char[size]());
    return block != nullptr;
}

} // namespace

Answer SWriteCmd::sdioOpen() {
    if (m_sdioState != kSdioClosed)
        sdioClose();
    m_sdioState = ::access(kDriverNode, F_OK);
    if (m_sdioState != 0)
        return genericError(kCannotOpen, kDriverNode);
    return success();
}

Answer SWriteCmd::sdioClose() {
    m_sdioState = kSdioClosed;
    sdioForget();
    m_inputPosition = 0;
    return success();
}

void SWriteCmd::sdioForget() {
    m_filled = 0;
    m_expected = 0;
}

Answer SWriteCmd::sdioSend(const unsigned char* data, std::size_t length) {
    if (m_sdioState != 0)
        return notOpen();
    m_inputPosition = 0;
    Answer collected = success();
    while (sdioAddToSendBuf(data, length, collected.get()) != kMoreNeeded) {
        if (Answer sent = sdioDoSend(); failed(*sent))
            return sent;
    }
    return collected;
}

int SWriteCmd::sdioAddToSendBuf(const unsigned char* data, std::size_t length,
                                ProcessResponse* response) {
    if (!allocate(m_sendBuffer, kSendBuffer)) {
        *response = ProcessResponse(kNoMemory, kNoSendBuffer, static_cast<int>(kSendBuffer));
        return kMoreNeeded;
    }
    if (m_filled < kSizeEnd) {
        sdioCollect(data, length, kSizeEnd);
        if (m_filled < kSizeEnd)
            return kMoreNeeded;
        m_expected = littleEndian16(m_sendBuffer.get() + kSizeAt);
    }
    if (m_expected < kHeader || m_expected > kSendBuffer) {
        *response =
            ProcessResponse(ProcessResponse::kGenericError, kSizeOutOfRange, static_cast<int>(kHeader),
                            static_cast<int>(kSendBuffer), static_cast<int>(m_expected));
        sdioForget();
        return kMoreNeeded;
    }
    sdioCollect(data, length, m_expected);
    return m_filled < m_expected ? kMoreNeeded : static_cast<int>(length - m_inputPosition);
}

/// Until `end` bytes are collected, or the data are used up.
void SWriteCmd::sdioCollect(const unsigned char* data, std::size_t length, std::size_t end) {
    const std::size_t count = std::min(end - m_filled, length - m_inputPosition);
    std::copy_n(data + m_inputPosition, count, m_sendBuffer.get() + m_filled);
    m_filled = static_cast<std::uint16_t>(m_filled + count);
    m_inputPosition += count;
}

Answer SWriteCmd::sdioDoSend() {
    std::array<unsigned char, kIoctlBuffer> buffer{};
    unsigned char* const command = buffer.data() + kCommandAt;
    std::copy_n(m_sendBuffer.get(), m_filled, command);
    int length = m_filled;
    // Whatever becomes of it: this command is not sent a second time.
    sdioForget();
    const int result = uap_ioctl(buffer.data(), &length, static_cast<int>(buffer.size()));
    if (result != kReplied)
        return genericError(kFailed, std::strerror(-result));
    if (const int refusal = littleEndian16(command + kResultAt); refusal != 0)
        return genericError(kRefused, refusal);
    if (!allocate(m_responseStore, kResponseStore))
        return failure(kNoMemory, kNoResponseStore, static_cast<int>(kResponseStore));
    const auto size = static_cast<std::size_t>(length);
    if (size > kResponseStore)
        return genericError(kReplyTooLong, length, static_cast<int>(kResponseStore));
    std::fill_n(m_responseStore.get(), kResponseStore, 0);
    std::copy_n(command, size, m_responseStore.get());
    m_responseLength = size;
    return success();
}

Answer SWriteCmd::sdioGet(unsigned char size, std::vector<unsigned char>& data) {
    if (m_sdioState != 0)
        return notOpen();
    if (m_responseLength == 0)
        return success();
    std::copy_n(m_responseStore.get(), std::min<std::size_t>({size, m_responseLength, data.size()}),
                data.begin());
    m_responseLength = 0;
    return success();
}
