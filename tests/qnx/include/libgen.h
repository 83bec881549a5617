#pragma once

/* 0 when the path exists, else -1 and errno. */
extern "C" int waitfor(const char* path, int delay_ms, int poll_ms);
