#pragma once

#include <stddef.h>
#include <sys/neutrino.h>

/* Both return 0 or an error number and leave errno alone. */
extern "C" int devctl(int filedes, int dcmd, void* dev_data_ptr, size_t n_bytes, int* dev_info_ptr);
extern "C" int devctlv(int filedes, int dcmd, int sparts, int rparts, const iov_t* sv, const iov_t* rv,
                       int* dev_info_ptr);
