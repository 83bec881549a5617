#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// The processes of the unit, dead ones not among them, that have this word among their arguments.
std::vector<pid_t> processesWith(const std::string& argument);
