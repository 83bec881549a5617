#pragma once

#include <signal.h>
#include <sys/types.h>

/* The values serve to tell them apart; only their names are known here. */
#define SPAWN_SETGROUP 0x01
#define SPAWN_SETSIGMASK 0x02
#define SPAWN_SETSIGDEF 0x04
#define SPAWN_NEWPGROUP 0

struct inheritance {
    unsigned long flags;
    pid_t pgroup;
    sigset_t sigmask;
    sigset_t sigdefault;
};

/* -1 and errno on failure. */
extern "C" pid_t spawn(const char* path, int fd_count, const int fd_map[],
                       const struct inheritance* inherit, char* const argv[], char* const envp[]);
