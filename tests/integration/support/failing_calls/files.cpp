// Files and folders, by their paths and by their descriptors.
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdarg>

#include "support/failing_calls/Gate.h"

namespace {

using Gate::Call;
using Gate::Repetition;

const Call s_open("open", {EIO, EMFILE, Repetition::AfterSignal});
const Call s_open64("open64", {EIO, EMFILE, Repetition::AfterSignal});
const Call s_close("close", {EIO, 0});
const Call s_access("access", {EIO, ENOMEM});
const Call s_stat("stat", {EIO, ENOMEM});
const Call s_lstat("lstat", {EIO, ENOMEM});
const Call s_fstat("fstat", {EIO, ENOMEM});
const Call s_lseek("lseek", {EIO, EINVAL});
const Call s_lseek64("lseek64", {EIO, EINVAL});
const Call s_ftruncate("ftruncate", {EIO, ENOSPC, Repetition::AfterSignal});
const Call s_fchmod("fchmod", {EIO, EROFS});
const Call s_unlink("unlink", {EIO, EBUSY});
const Call s_remove("remove", {EIO, EBUSY});
const Call s_opendir("opendir", {EMFILE, ENOMEM});
const Call s_fcntl("fcntl", {EINVAL, ENOMEM});
const Call s_dup2("dup2", {EMFILE, EBUSY});
const Call s_dup3("dup3", {EMFILE, EBUSY});
const Call s_pipe2("pipe2", {EMFILE, ENFILE});
const Call s_addWatch("inotify_add_watch", {ENOSPC, ENOMEM});
const Call s_fdopen("fdopen", {ENOMEM, 0});
const Call s_fclose("fclose", {EIO, 0});
const Call s_fflush("fflush", {EIO, 0});

} // namespace

IN_FRONT int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return Gate::attempt(s_open, ::open, path, flags, mode);
}

IN_FRONT int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return Gate::attempt(s_open64, ::open, path, flags, mode);
}

IN_FRONT int close(int file) {
    return Gate::doAndAttempt(s_close, ::close, file);
}

IN_FRONT int access(const char* path, int mode) noexcept {
    return Gate::attempt(s_access, ::access, path, mode);
}

IN_FRONT int stat(const char* path, struct stat* status) noexcept {
    return Gate::attempt(s_stat, static_cast<int (*)(const char*, struct stat*) noexcept>(::stat), path,
                         status);
}

IN_FRONT int lstat(const char* path, struct stat* status) noexcept {
    return Gate::attempt(s_lstat, ::lstat, path, status);
}

IN_FRONT int fstat(int file, struct stat* status) noexcept {
    return Gate::attempt(s_fstat, ::fstat, file, status);
}

IN_FRONT off_t lseek(int file, off_t offset, int whence) noexcept {
    return Gate::attempt(s_lseek, ::lseek, file, offset, whence);
}

IN_FRONT off64_t lseek64(int file, off64_t offset, int whence) noexcept {
    return Gate::attempt(s_lseek64, ::lseek64, file, offset, whence);
}

IN_FRONT int ftruncate(int file, off_t size) noexcept {
    return Gate::attempt(s_ftruncate, ::ftruncate, file, size);
}

IN_FRONT int fchmod(int file, mode_t mode) noexcept {
    return Gate::attempt(s_fchmod, ::fchmod, file, mode);
}

IN_FRONT int unlink(const char* path) noexcept {
    return Gate::attempt(s_unlink, ::unlink, path);
}

IN_FRONT int remove(const char* path) noexcept {
    return Gate::attempt(s_remove, ::remove, path);
}

IN_FRONT DIR* opendir(const char* path) {
    return Gate::attempt(s_opendir, ::opendir, path);
}

IN_FRONT int fcntl(int file, int command, ...) {
    va_list rest;
    va_start(rest, command);
    const long argument = va_arg(rest, long);
    va_end(rest);
    return Gate::attempt(s_fcntl, ::fcntl, file, command, argument);
}

IN_FRONT int dup2(int file, int number) noexcept {
    return Gate::attempt(s_dup2, ::dup2, file, number);
}

IN_FRONT int dup3(int file, int number, int flags) noexcept {
    return Gate::attempt(s_dup3, ::dup3, file, number, flags);
}

IN_FRONT int pipe2(int* ends, int flags) noexcept {
    return Gate::attempt(s_pipe2, ::pipe2, ends, flags);
}

IN_FRONT int inotify_add_watch(int notifier, const char* path, std::uint32_t events) noexcept {
    return Gate::attempt(s_addWatch, ::inotify_add_watch, notifier, path, events);
}

IN_FRONT FILE* fdopen(int file, const char* mode) noexcept {
    return Gate::attempt(s_fdopen, ::fdopen, file, mode);
}

IN_FRONT int fclose(FILE* stream) {
    return Gate::doAndAttempt(s_fclose, ::fclose, stream);
}

IN_FRONT int fflush(FILE* stream) {
    return Gate::doAndAttempt(s_fflush, ::fflush, stream);
}
