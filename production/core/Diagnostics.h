#pragma once

constexpr char kDiagnosticPrefix[] = "Prod.testserver: ";

/// Writes kDiagnosticPrefix, the message as printf makes it and a newline to standard error as one line.
/// Any thread; waits for nobody who reads it. What cannot go on for want of memory is reported with it:
/// it never throws, and a text of less than a thousand bytes takes no memory. Of a longer one only the
/// beginning is written where memory is short.
void printDiagnostic(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));

/// The same without prefix and newline.
void printError(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));
