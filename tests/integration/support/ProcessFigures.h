#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

/// What the kernel tells about a process, as of now. Empty or 0 for one that is gone.

std::vector<int> openDescriptors(pid_t pid);

/// Those from 3 on that a started program would inherit, as "number -> what it is".
std::vector<std::string> inheritableDescriptors(pid_t pid);

std::size_t threadCount(pid_t pid);

/// The same for a daemon that may have been started a moment ago: it is waited for the last of its own
/// threads, which comes behind the port.
std::size_t settledThreadCount(pid_t pid);

std::size_t residentBytes(pid_t pid);
std::size_t addressSpaceBytes(pid_t pid);

/// Processor time of all its threads, since its start.
std::chrono::milliseconds processorTime(pid_t pid);

/// How often its threads have gone to sleep, which is how often they have been woken.
long wakeUps(pid_t pid);

/// Dead ones that were not collected yet among them.
std::vector<pid_t> childrenOf(pid_t pid);

/// False also for a process that has ended and was not collected yet.
bool isRunning(pid_t pid);
