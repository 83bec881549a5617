#pragma once

#include <string>
#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// The whole content of a file; empty when it cannot be read. A file that grows meanwhile is cut at the
/// size it had at first. Throws std::bad_alloc for a file that does not fit into memory.
std::string readFileToString(const char* path);

/// Runs shell command lines with a time limit and answers what they wrote; answers files for others.
class cReadCmd : public AbstractCmd {
public:
    static cReadCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    /// Runs `commandText` in a shell and waits for it, for at most `timeoutSeconds` (0 means 5 s). The
    /// output is left in "/tmp/resp.txt". Code 0 when the shell ended by itself, whatever its exit code.
    /// What becomes of a shell that outlives its limit is the system's way, see `platform/Shell.h`.
    /// Blocks the dispatcher.
    Answer executeCommand(unsigned long long timeoutSeconds, const char* commandText);

    /// Answers the first bytes of a file, as many as one frame holds.
    Answer ReadFromFileBinary(const std::vector<unsigned char>* request, const char* path);
    /// Answers a whole file as "base64(...)", or that it cannot be read, for want of memory too.
    Answer ReadFromFileBase64(const char* path);

private:
    cReadCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);

    static System::Mutex s_singleton_mutex;
};
