#pragma once

#include <string>

/// Writes "Prod.testserver: ", the message and a newline to standard error as one line. Any thread;
/// waits for nobody who reads it.
void printDiagnostic(const std::string& message);

/// The line that it writes.
std::string diagnosticLine(const std::string& message);
