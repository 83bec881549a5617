#include "rows/Processes.h"

#include <algorithm>

#include "support/Files.h"
#include "support/TestFolder.h"

std::vector<pid_t> processesWith(const std::string& argument) {
    const std::string word = '\0' + argument + '\0';
    std::vector<pid_t> found;
    for (const std::string& name : namesIn("/proc")) {
        const bool isProcess =
            std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
        if (isProcess && contentOf("/proc/" + name + "/cmdline").find(word) != std::string::npos)
            found.push_back(std::stoi(name));
    }
    return found;
}
