// Processes and threads.
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdarg>

#include "support/failing_calls/Gate.h"

namespace {

using Gate::Call;
using Gate::Repetition;

const Call s_fork("vfork", {EAGAIN, ENOMEM});
const Call s_execute("execve", {ENOENT, ENOMEM});
const Call s_session("setsid", {EPERM, 0});
const Call s_control("prctl", {EINVAL, 0});
const Call s_systemCall("syscall", {ENOSYS, EMFILE});
const Call s_wait("waitpid", {ECHILD, 0, Repetition::AfterSignal});
const Call s_look("waitid", {ECHILD, 0, Repetition::AfterSignal});
const Call s_kill("kill", {EPERM, ESRCH});
const Call s_sleep("nanosleep", {0, 0, Repetition::AfterSignal});
const Call s_environment("setenv", {ENOMEM, 0});
const Call s_thread("pthread_create", {EAGAIN, 0});

} // namespace

/// The child gets a copy of the memory, since a function cannot return twice in the same; the parent
/// waits for it all the same.
IN_FRONT pid_t vfork() noexcept {
    if (s_fork.fails(__builtin_return_address(0)))
        return -1;
    const unsigned long flags = static_cast<unsigned long>(CLONE_VFORK) | SIGCHLD;
    return static_cast<pid_t>(s_systemCall.original(::syscall)(SYS_clone, flags, 0L, 0L, 0L, 0L));
}

IN_FRONT int execve(const char* path, char* const* arguments, char* const* environment) noexcept {
    return Gate::attempt(s_execute, ::execve, path, arguments, environment);
}

IN_FRONT pid_t setsid() noexcept {
    return Gate::attempt(s_session, ::setsid);
}

IN_FRONT int prctl(int option, ...) noexcept {
    va_list rest;
    va_start(rest, option);
    const unsigned long argument = va_arg(rest, unsigned long);
    va_end(rest);
    return Gate::attempt(s_control, ::prctl, option, argument);
}

IN_FRONT long syscall(long number, ...) noexcept {
    va_list rest;
    va_start(rest, number);
    const long one = va_arg(rest, long);
    const long two = va_arg(rest, long);
    const long three = va_arg(rest, long);
    va_end(rest);
    return Gate::attempt(s_systemCall, ::syscall, number, one, two, three);
}

IN_FRONT pid_t waitpid(pid_t child, int* status, int options) {
    return Gate::attempt(s_wait, ::waitpid, child, status, options);
}

IN_FRONT int waitid(idtype_t kind, id_t child, siginfo_t* information, int options) {
    return Gate::attempt(s_look, ::waitid, kind, child, information, options);
}

IN_FRONT int kill(pid_t process, int signal) noexcept {
    if (process == ::getpid()) // nobody is kept from that
        return s_kill.original(::kill)(process, signal);
    return Gate::attempt(s_kill, ::kill, process, signal);
}

IN_FRONT int nanosleep(const timespec* time, timespec* left) {
    if (!s_sleep.fails(__builtin_return_address(0)))
        return s_sleep.original(::nanosleep)(time, left);
    if (left != nullptr)
        *left = *time;
    return -1;
}

IN_FRONT int setenv(const char* name, const char* value, int overwrite) noexcept {
    return Gate::attempt(s_environment, ::setenv, name, value, overwrite);
}

IN_FRONT int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                            void* argument) noexcept {
    if (s_thread.fails(__builtin_return_address(0)))
        return errno;
    return s_thread.original(::pthread_create)(thread, attributes, run, argument);
}
