#include "support/MarkedProcesses.h"

#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

MarkedProcesses::MarkedProcesses() {
    static int count = 0;
    m_mark = "86400." + std::to_string(::getpid()) + std::to_string(++count);
}

MarkedProcesses::~MarkedProcesses() {
    for (const pid_t pid : alive())
        ::kill(pid, SIGKILL);
}

std::string MarkedProcesses::in(std::string script) const {
    const std::string word = "SLEEP";
    const std::string command = sleep();
    for (std::size_t at = script.find(word); at != std::string::npos; at = script.find(word, at))
        script.replace(at, word.size(), command);
    return script;
}

std::vector<pid_t> MarkedProcesses::alive() const {
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        std::ifstream file(entry.path() / "cmdline");
        const std::string line((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        if (line.find(m_mark) != std::string::npos)
            found.push_back(static_cast<pid_t>(std::stoi(name)));
    }
    return found;
}
