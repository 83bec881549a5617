#include "measuring/PageFaults.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

namespace Measuring {

double pageFaultsOf(pid_t pid) {
    // Behind the program's name, which may itself hold blanks.
    constexpr std::size_t kColumn = 7;
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const std::size_t end = content.rfind(')');
    if (end == std::string::npos)
        throw std::runtime_error("cannot read the page faults of a process");
    std::istringstream columns(content.substr(end + 1));
    std::string column;
    for (std::size_t skipped = 0; skipped <= kColumn; ++skipped)
        columns >> column;
    return std::stod(column);
}

} // namespace Measuring
