#include "model/UnitState.h"

#include <sstream>
#include <stdexcept>
#include <vector>

#include "support/Program.h"

namespace {

std::string control(const std::string& words) {
    std::vector<std::string> command = {"headunit", "control"};
    std::istringstream all(words);
    for (std::string word; all >> word;)
        command.push_back(word);
    Program program(command);
    const Outcome outcome = program.outcome();
    if (outcome.exitCode != 0)
        throw std::runtime_error("headunit control " + words + ": " + outcome.errors);
    return outcome.output;
}

} // namespace

bool isStateOfUnit(const std::string& line) {
    return ("\n" + control("state")).find("\n" + line + "\n") != std::string::npos;
}

void controlUnit(const std::string& words) {
    control(words);
}
