#pragma once

/* With the values that the files of that system have, which are not those of this machine. */
#define O_RDONLY 0x00
#define O_WRONLY 0x01
#define O_RDWR 0x02
#define O_NONBLOCK 0x80
#define O_CREAT 0x100
#define O_EXCL 0x400
#define O_NOCTTY 0x800
#define O_CLOEXEC 0x2000
#define O_NOFOLLOW 0x400000

#define F_SETFD 2
#define F_GETFL 3
#define F_SETFL 4
#define FD_CLOEXEC 1

extern "C" int open(const char* path, int oflag, ...);
extern "C" int open64(const char* path, int oflag, ...);
extern "C" int fcntl(int fildes, int cmd, ...);
