#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "wire/Descriptor.h"

namespace headunit_test {

/// A program under test with pipes at its standard streams. Every wait has a deadline, after which it
/// gives up; the program is killed with this object.
class Program {
public:
    struct Surroundings {
        std::string folder;                             ///< working directory, the test's when empty
        std::map<std::string, std::string> environment; ///< added to the test's
    };

    explicit Program(std::vector<std::string> command, const Surroundings& surroundings = {});
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    pid_t pid() const { return m_pid; }
    void signal(int number) const;
    void write(const std::string& text) const;
    void endInput() { m_input.reset(); }

    /// Whether standard output has come to hold the text.
    bool waitForOutput(const std::string& text);

    /// Waits until the program has ended and nobody at all holds its output and error streams any more.
    /// Returns the exit status, 128 plus the signal that killed it, or -1 when the deadline passed.
    int wait();

    const std::string& output() const { return m_output; }
    const std::string& error() const { return m_error; }

private:
    bool pump(int remainingMilliseconds);

    pid_t m_pid;
    System::Descriptor m_ended;
    System::Descriptor m_input;
    System::Descriptor m_outputPipe;
    System::Descriptor m_errorPipe;
    std::string m_output;
    std::string m_error;
    int m_status = -1;
};

/// A folder of the test's own, removed with this object.
class TestFolder {
public:
    TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder();

    const std::string& path() const { return m_path; }
    std::string operator/(const std::string& name) const { return m_path + "/" + name; }

    /// The names in it, sorted.
    std::vector<std::string> names() const;

private:
    std::string m_path;
};

std::string contentOf(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

} // namespace headunit_test
