// The calls about processes, threads, libraries and terminals.
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/neutrino.h>
#include <sys/types.h>
#include <termios.h>

#include <string>

#include "fake/FakeSystem.h"

using namespace FakeSystem;
using std::to_string;

namespace {

constexpr int kLastOrdinarySignal = 31;

std::string signals(const sigset_t& set) {
    int members = 0;
    for (int signal = 1; signal <= kLastOrdinarySignal; ++signal)
        members += ::sigismember(&set, signal);
    return members == 0 ? "none" : members == kLastOrdinarySignal ? "all" : "some";
}

std::string differences(const inheritance& inherit) {
    return "flags=" + hex(static_cast<unsigned>(inherit.flags)) +
           " pgroup=" + to_string(inherit.pgroup) + " sigmask=" + signals(inherit.sigmask) +
           " sigdefault=" + signals(inherit.sigdefault);
}

std::string list(const int* numbers, int count) {
    std::string line = "{";
    for (int at = 0; at < count; ++at)
        line += (at == 0 ? "" : " ") + to_string(numbers[at]);
    return line + "}";
}

std::string list(char* const* texts) {
    std::string line = "{";
    for (int at = 0; texts[at] != nullptr; ++at)
        line += (at == 0 ? "" : " ") + text(texts[at]);
    return line + "}";
}

/// The place that a library or what it exports has; no place when the call is to fail.
void* place(const Result& result) {
    static int somewhere = 0;
    return result.value == -1 ? nullptr : &somewhere;
}

} // namespace

extern "C" {

pid_t spawn(const char* path, int fd_count, const int fd_map[], const struct inheritance* inherit,
            char* const argv[], char* const envp[]) {
    return recordInt("spawn", {text(path), to_string(fd_count), list(fd_map, fd_count),
                               differences(*inherit), list(argv), pointer(envp)});
}

int TimerTimeout(clockid_t id, int flags, const struct sigevent* notify, const uint64_t* ntime,
                 uint64_t* otime) {
    return recordInt("TimerTimeout",
                     {to_string(id), hex(flags), pointer(notify), to_string(*ntime), pointer(otime)});
}

pid_t __wrap_waitpid(pid_t pid, int* status, int options) {
    const Result result = record("waitpid", {to_string(pid), pointer(status), hex(options)});
    if (result.fill)
        result.fill(status);
    return static_cast<pid_t>(result.value);
}

int __wrap_kill(pid_t pid, int signal) {
    return recordInt("kill", {to_string(pid), to_string(signal)});
}

int pthread_attr_setstackprealloc(const pthread_attr_t* attr, std::size_t stacksize) {
    return recordInt("pthread_attr_setstackprealloc", {pointer(attr), to_string(stacksize)});
}

int __wrap_pthread_setname_np(pthread_t, const char* name) {
    return recordInt("pthread_setname_np", {text(name)});
}

void* __wrap_dlopen(const char* path, int mode) {
    return place(record("dlopen", {text(path), to_string(mode)}));
}

void* __wrap_dlsym(void* handle, const char* name) {
    return place(record("dlsym", {pointer(handle), text(name)}));
}

int __wrap_dlclose(void* handle) {
    return recordInt("dlclose", {pointer(handle)});
}

int __wrap_cfsetospeed(struct termios* attributes, speed_t speed) {
    attributes->c_ospeed = speed;
    return recordInt("cfsetospeed", {to_string(speed)});
}

int __wrap_cfsetispeed(struct termios* attributes, speed_t speed) {
    attributes->c_ispeed = speed;
    return recordInt("cfsetispeed", {to_string(speed)});
}

int __wrap_cfmakeraw(struct termios* attributes) {
    attributes->c_lflag = 0;
    return recordInt("cfmakeraw", {});
}

} // extern "C"
