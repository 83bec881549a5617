#pragma once

#include <string>

#include "support/Rows.h"

/// What the results of a bus's manager are called: by a write and by a transfer, by a read, and when the
/// speed is set.
inline const Rows<int, std::string, std::string, std::string> kBusResults = [] {
    const std::string locked = ": The master is locked by another connection";
    const std::string format = ": Bad message format";
    Rows<int, std::string, std::string, std::string> rows = {
        {1, locked, ": Operation not permitted", ": Operation not permitted"},
        {5, ": The master send failed", ": bad slave address/ bad bus speed/ bus is busy",
         ": Input/output error"},
        {12, ": Insufficient memory", locked, ": Cannot allocate memory"},
        {14, ": An error occurred while accessing the data buffer", ": Bad address", ": Bad address"},
        {22, format, format, format},
    };
    const Rows<int, std::string> others = {
        {2, ": No such file or directory"}, {25, ": Inappropriate ioctl for device"},
        {110, ": Connection timed out"},    {4711, ": Unknown error 4711"},
        {-5, ": Unknown error -5"},
    };
    for (const auto& [result, text] : others)
        rows.emplace_back(result, text, text, text);
    return rows;
}();
