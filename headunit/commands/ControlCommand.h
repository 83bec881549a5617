#pragma once

#include <string>
#include <vector>

namespace headunit {

struct ControlOptions {
    std::string unitFolder; ///< empty for the unit that this process runs in
    std::vector<std::string> words;
};

/// Asks a running unit for something and prints its answer. Returns the exit status: 0 when it was done,
/// 1 when the unit refused, 2 for words that cannot be sent, 3 when there is no unit.
int controlCommand(const ControlOptions& options);

} // namespace headunit
