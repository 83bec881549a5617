#include "support/MarkedProcesses.h"

#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

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
    return having([this](const std::string& line) { return line.find(m_mark) != std::string::npos; });
}

std::vector<pid_t> MarkedProcesses::sleeping() const {
    const std::string command = std::string("sleep") + '\0' + m_mark + '\0';
    return having([&command](const std::string& line) { return line == command; });
}

std::vector<pid_t> MarkedProcesses::having(
    const std::function<bool(const std::string& commandLine)>& property) {
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const std::ifstream file(entry.path() / "cmdline");
        // A process may go between the opening and the reading; the copying takes that for the end.
        std::ostringstream line;
        line << file.rdbuf();
        if (property(line.str()))
            found.push_back(static_cast<pid_t>(std::stoi(name)));
    }
    return found;
}
