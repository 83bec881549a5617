#pragma once

#include <signal.h>
#include <stdint.h>
#include <sys/uio.h>
#include <time.h>

typedef struct iovec iov_t;

#define SETIOV(iov, address, length) ((void)((iov)->iov_base = (address), (iov)->iov_len = (length)))

/* The longest name of a thread. */
#define _NTO_THREAD_NAME_MAX 100

/* A time-out is told the states that it ends by one bit each, and the bit's number is the state's. */
#define STATE_SEND 4
#define STATE_REPLY 6
#define _NTO_TIMEOUT_SEND (1 << STATE_SEND)
#define _NTO_TIMEOUT_REPLY (1 << STATE_REPLY)

/* -1 and errno on failure. */
extern "C" int TimerTimeout(clockid_t id, int flags, const struct sigevent* notify,
                            const uint64_t* ntime, uint64_t* otime);

/* Failures are negative error numbers; errno is left alone. */
extern "C" int MsgSendv_r(int coid, const iov_t* siov, int sparts, const iov_t* riov, int rparts);
