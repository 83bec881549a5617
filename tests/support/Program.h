#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "wire/Descriptor.h"

/// What a program finds; by default what the test does, and pipes at its standard streams.
struct ProgramSurroundings {
    std::string folder;                             ///< working directory, the test's when empty
    std::map<std::string, std::string> environment; ///< added to the test's
    std::string hidden = {}; ///< the test's variables whose names begin like this are left out
    // Descriptors in place of the pipes.
    int input = -1;
    int output = -1;
    int error = -1;
    /// Called in the child, when its streams are set up; false: it cannot be started.
    std::function<bool()> prepare = [] { return true; };
};

/// How a program ended, and all that it wrote.
struct Outcome {
    int exitCode = 0;
    std::string output;
    std::string errors;

    friend bool operator==(const Outcome& one, const Outcome& other) {
        return one.exitCode == other.exitCode && one.output == other.output &&
               one.errors == other.errors;
    }
    friend void PrintTo(const Outcome& outcome, std::ostream* out);
};

/// A program as a child of the test. Every wait has a deadline, after which it gives up; the program is
/// killed with this object.
class Program {
public:
    using Surroundings = ProgramSurroundings;

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

    /// The same, with all that it wrote.
    Outcome outcome();

    /// False from the moment at which the program has ended.
    bool isAlive() const;

    /// The signal that killed it, or 0. For a program that has been waited for.
    int killer() const { return m_killer; }

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
    int m_killer = 0;
};
