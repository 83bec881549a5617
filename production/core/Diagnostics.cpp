#include "core/Diagnostics.h"

#include <cstdio>

void printDiagnostic(const std::string& message) {
    const std::string line = "Prod.testserver: " + message + "\n";
    std::fputs(line.c_str(), stderr);
}
