// The calls that talk to device managers, file systems and the network stack.
#include <devctl.h>
#include <libgen.h>
#include <resolv.h>
#include <sys/neutrino.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>

#include "fake/FakeSystem.h"

using namespace FakeSystem;
using std::to_string;

namespace {

/// What lies in the parts now, which is what would be sent.
std::string content(const iov_t* vector, int count) {
    std::string line;
    for (int at = 0; at < count; ++at)
        line += bytes(vector[at].iov_base, vector[at].iov_len);
    return line.empty() ? "nothing" : line;
}

void deliverTo(const iov_t* vector, int count, Result result) {
    for (int at = 0; at < count; ++at) {
        deliver(result, vector[at].iov_base, vector[at].iov_len);
        const std::size_t taken = std::min(vector[at].iov_len, result.bytes.size());
        result.bytes.erase(result.bytes.begin(), result.bytes.begin() + static_cast<long>(taken));
    }
}

int fillStatus(const char* name, int descriptor, void* status) {
    const Result result = record(name, {to_string(descriptor)});
    if (result.fill)
        result.fill(status);
    return static_cast<int>(result.value);
}

} // namespace

extern "C" {

int devctl(int filedes, int dcmd, void* data, std::size_t size, int* info) {
    const Result result = record(
        "devctl", {to_string(filedes), hex(dcmd), bytes(data, size), to_string(size), pointer(info)});
    deliver(result, data, size);
    return static_cast<int>(result.value);
}

int devctlv(int filedes, int dcmd, int sparts, int rparts, const iov_t* sv, const iov_t* rv, int* info) {
    const Result result =
        record("devctlv", {to_string(filedes), hex(dcmd), to_string(sparts), to_string(rparts),
                           content(sv, sparts), content(rv, rparts), pointer(info)});
    deliverTo(rv, rparts, result);
    return static_cast<int>(result.value);
}

int MsgSendv_r(int coid, const iov_t* siov, int sparts, const iov_t* riov, int rparts) {
    const Result result =
        record("MsgSendv_r", {to_string(coid), content(siov, sparts), to_string(sparts),
                              siov == riov ? "the same" : content(riov, rparts), to_string(rparts)});
    deliverTo(riov, rparts, result);
    return static_cast<int>(result.value);
}

int waitfor(const char* path, int delay_ms, int poll_ms) {
    return recordInt("waitfor", {text(path), to_string(delay_ms), to_string(poll_ms)});
}

int __wrap_fstat(int descriptor, struct stat* status) {
    return fillStatus("fstat", descriptor, status);
}

// Where 64-bit sizes have a call of their own.
int __wrap_fstat64(int descriptor, struct stat* status) {
    return fillStatus("fstat", descriptor, status);
}

int __wrap___b64_ntop(const unsigned char* source, std::size_t length, char* target, std::size_t room) {
    const Result result =
        record("__b64_ntop", {bytes(source, length), to_string(length), to_string(room)});
    deliver(result, target, room);
    return static_cast<int>(result.value);
}

int __wrap___b64_pton(const char* source, unsigned char* target, std::size_t room) {
    const Result result = record("__b64_pton", {text(source), to_string(room)});
    deliver(result, target, room);
    return static_cast<int>(result.value);
}

} // extern "C"
