#include "commands/ControlCommand.h"

#include <algorithm>
#include <iostream>

#include "control/ControlClient.h"
#include "control/ControlSocket.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr int kDone = 0;
constexpr int kRefused = 1;
constexpr int kUnusableWords = 2;
constexpr int kNoUnit = 3;

std::string joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + word;
    return line;
}

int complain(const std::string& text, int status) {
    std::cerr << "headunit: " << text << '\n';
    return status;
}

} // namespace

int controlCommand(const ControlOptions& options) {
    const std::string line = joined(options.words);
    if (std::find(line.begin(), line.end(), '\n') != line.end())
        return complain("a word with a line end cannot be sent", kUnusableWords);
    const std::string folder = options.unitFolder + kControlFolder;
    try {
        const auto answer = askUnit(folder, line);
        if (!answer)
            return complain("no unit listens at " + folder + "/" + kControlName +
                                "; outside a unit name its folder with --unit",
                            kNoUnit);
        if (!answer->done)
            return complain(answer->text, kRefused);
        std::cout << (answer->text.empty() ? "ok" : answer->text) << std::endl;
        return kDone;
    } catch (const UnitError& error) {
        return complain(error.what(), kNoUnit);
    }
}

} // namespace headunit
