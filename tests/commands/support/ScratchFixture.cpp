#include "support/ScratchFixture.h"

#include <algorithm>
#include <atomic>

#include "core/AbstractCmd.h"

namespace {

std::atomic<bool> s_refused{false};

unsigned char preparedAt(unsigned int address) {
    return static_cast<unsigned char>(address * 7 + address / 256 + 3);
}

} // namespace

extern "C" {

void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return s_refused && count * size == kScratchBytes ? nullptr : __real_calloc(count, size);
}

} // extern "C"

void refuseScratchMemory(bool refused) {
    s_refused = refused;
}

Bytes access(unsigned char code, unsigned char count, unsigned int address, const Bytes& rest) {
    Bytes frame = joined(joined({0, 't', code, count}, bigEndian(address)), rest);
    frame[0] = static_cast<unsigned char>(frame.size());
    return frame;
}

std::vector<char> dataToken(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

ScratchFixture::ScratchFixture() {
    unsigned char* const buffer = AbstractCmd::getGlobalBuffer();
    for (unsigned int at = 0; at < kPrepared; ++at) {
        buffer[at] = preparedAt(at);
        buffer[kScratchBytes - kPrepared + at] = preparedAt(kPrepared + at);
    }
}

void ScratchFixture::store(unsigned int address, const Bytes& bytes) {
    std::copy(bytes.begin(), bytes.end(), AbstractCmd::getGlobalBuffer() + address);
}

Bytes ScratchFixture::stored(unsigned int address, std::size_t count) {
    const unsigned char* const begin = AbstractCmd::getGlobalBuffer() + address;
    return {begin, begin + count};
}

Bytes ScratchFixture::allStored() {
    return joined(stored(0, kPrepared), stored(kScratchBytes - kPrepared, kPrepared));
}
