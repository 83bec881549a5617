#include "core/Diagnostics.h"

#include "core/StandardStream.h"

void printDiagnostic(const std::string& message) {
    StandardStream::error().write(diagnosticLine(message));
}

std::string diagnosticLine(const std::string& message) {
    return "Prod.testserver: " + message + "\n";
}
