#pragma once

#include <string>

/// Writes "Prod.testserver: ", the message and a newline to standard error as one line. Any thread.
void printDiagnostic(const std::string& message);
