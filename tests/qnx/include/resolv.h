#pragma once

#include <stddef.h>

extern "C" int __b64_ntop(const unsigned char* src, size_t srclength, char* target, size_t targsize);
extern "C" int __b64_pton(const char* src, unsigned char* target, size_t targsize);
