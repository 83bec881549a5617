#pragma once

#include <string>

/// Replaces the file's content, or makes the file. Throws std::runtime_error.
void writeFile(const std::string& path, const std::string& content);

/// Empty when there is no such file, or there no longer is while it is read.
std::string contentOf(const std::string& path);

/// Links are not followed.
bool exists(const std::string& path);
