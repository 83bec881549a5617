#pragma once

typedef unsigned int speed_t;
typedef unsigned int tcflag_t;

/* No more than what is needed to tell a change. */
struct termios {
    tcflag_t c_lflag;
    speed_t c_ispeed;
    speed_t c_ospeed;
};

/* 0, or -1 and errno: all of them, on that system. */
extern "C" int cfsetispeed(struct termios* attributes, speed_t speed);
extern "C" int cfsetospeed(struct termios* attributes, speed_t speed);
extern "C" int cfmakeraw(struct termios* attributes);
