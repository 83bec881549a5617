#pragma once

#include <string>

/// Whether the unit tells this line of itself.
bool isStateOfUnit(const std::string& line);

/// Has the unit do something. Throws std::runtime_error when it refuses.
void controlUnit(const std::string& words);
