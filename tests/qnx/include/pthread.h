#pragma once

/* This machine's own, and the one call that it lacks. */
#include_next <pthread.h>

extern "C" int pthread_attr_setstackprealloc(const pthread_attr_t* attr, size_t stacksize);
