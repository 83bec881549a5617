#include "commands/cReadCmd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

#include "core/Diagnostics.h"
#include "core/MemoryGuard.h"
#include "core/ProcessResponseAscii.h"
#include "core/TokenText.h"
#include "platform/Base64.h"
#include "platform/Descriptors.h"
#include "platform/Node.h"
#include "platform/Shell.h"

namespace {

constexpr char kCaptureFile[] = "/tmp/resp.txt";
// What commands print may be confidential to their user.
constexpr mode_t kCaptureMode = S_IRUSR | S_IWUSR;

constexpr int kShortestRequest = 6;
constexpr int kLongestRequest = 255;
constexpr std::size_t kTextAt = 5;
constexpr int kExecute = 0x01;
constexpr std::size_t kTokens = 4;
constexpr char kCommandWord[] = "command";

constexpr unsigned long long kNanosecondsPerSecond = 1'000'000'000;
constexpr unsigned long long kDefaultLimit = 5 * kNanosecondsPerSecond;
constexpr off_t kMaxPayload = 246;
// A file in memory, its text, the answer line and the line's frame, at once.
constexpr std::size_t kCopiesOfOutput = 7;

constexpr char kTooLong[] = "Command 'c': too long! max.255 bytes";
constexpr char kTooShort[] = "Command 'c': too short! min.6 bytes";
constexpr char kUnsupported[] = "unsupported c subcommand";
constexpr char kInvalidCharacter[] = "invalid character in input command: ";
constexpr char kWrongTokenCount[] =
    "Command execute was called with %d parameters must have 4 parameters";
constexpr char kUnsupportedAscii[] = "Unsupported exec subcommand ";
constexpr char kNoPipe[] = "could not create a pipe for the parent process";
constexpr char kNoCaptureFile[] = "Error, the /tmp/resp.txt could not be created";
constexpr char kSpawnFailed[] = "spawn for starting /bin/sh failed";
constexpr char kNotKilled[] = "Process %s could not be killed after timeout\n";
constexpr char kKilled[] = "Process %s was killed after timeout\nstdout+err:\n%s\n";
constexpr char kNotFed[] = "could not write the command to /bin/sh: %s";
constexpr char kWaitFailed[] =
    "Timer timeout for c command child process with unknown error errorno: %d";
constexpr char kSignalled[] = "child process for c command received signal pid: %d, returncode: %d";
constexpr char kExitedWithTimeout[] = "child process for c command exited with timeout pid: %d";
constexpr char kExitedOtherwise[] = "child process for c command exited otherwise: %d, returncode: %d";
constexpr char kCannotOpen[] = "cannot open %s, no information available";
constexpr char kCannotStat[] = "cannot stat %s, no information available";
constexpr char kCannotRead[] = "cannot read %s: %s";
constexpr char kFileEmpty[] = "File %s is empty";

constexpr int kTimeoutStatus = 260;

template <typename... Arguments>
ProcessResponse error(const char* format, Arguments... arguments) {
    return ProcessResponse(ProcessResponse::kGenericError, format, arguments...);
}

template <typename... Arguments>
ProcessResponse* newError(const char* format, Arguments... arguments) {
    return new ProcessResponse(ProcessResponse::kGenericError, format, arguments...);
}

template <typename... Arguments>
ProcessResponse* newTavrinError(const char* format, Arguments... arguments) {
    return new ProcessResponseTavrin(ProcessResponse::kGenericError, format, arguments...);
}

std::string readWhole(const System::Descriptor& file) {
    const off_t end = file ? ::lseek(file.get(), 0, SEEK_END) : -1;
    struct stat information {};
    if (end <= 0 || ::fstat(file.get(), &information) != 0 || S_ISDIR(information.st_mode))
        return {};
    // Before it becomes a size in memory, which may have fewer bits.
    if (static_cast<std::uint64_t>(end) > std::numeric_limits<std::size_t>::max() / kCopiesOfOutput)
        throw std::bad_alloc();
    const auto size = static_cast<std::size_t>(end);
    MemoryGuard::require(size * kCopiesOfOutput);
    std::string content(size, '\0');
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count =
            System::readNodeAt(file.get(), content.data() + done, size - done, static_cast<off_t>(done));
        if (count <= 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    content.resize(done);
    return content;
}

/// A file of its own for each command: what an earlier command left running keeps the earlier file, and
/// O_EXCL does not follow a link that was put in its place.
System::Descriptor createCaptureFile() {
    if (::unlink(kCaptureFile) != 0 && errno != ENOENT)
        return {};
    return System::Descriptor(::open(kCaptureFile, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kCaptureMode));
}

ProcessResponse judgeStatus(int status, int pid) {
    if ((status & 0xFF) == 0)
        return ProcessResponse(ProcessResponse::kSuccess);
    if ((status & 0xFF00) == 0)
        return error(kSignalled, pid, status & 0x7F);
    if (status == kTimeoutStatus)
        return error(kExitedWithTimeout, pid);
    return error(kExitedOtherwise, pid, status);
}

std::chrono::nanoseconds limitFrom(unsigned long long seconds) {
    constexpr unsigned long long kLongest = std::numeric_limits<std::chrono::nanoseconds::rep>::max();
    // Unsigned on purpose: a negative number of seconds wraps to a limit that is never reached.
    const unsigned long long nanoseconds = seconds * kNanosecondsPerSecond;
    return std::chrono::nanoseconds(static_cast<std::chrono::nanoseconds::rep>(
        nanoseconds == 0 ? kDefaultLimit : std::min(nanoseconds, kLongest)));
}

ProcessResponse* answerBase64(const std::string& content) {
    auto response = std::make_unique<ProcessResponseAscii>(ProcessResponse::kSuccess, "");
    const auto* bytes = reinterpret_cast<const unsigned char*>(content.data());
    response->answer = "base64(" + System::encodeBase64(bytes, content.size()) + ")";
    return response.release();
}

} // namespace

std::string readFileToString(const char* path) {
    return readWhole(System::openNode(path, O_RDONLY));
}

System::Mutex cReadCmd::s_singleton_mutex(System::Mutex::Normal);

cReadCmd* cReadCmd::getInstance() {
    const System::Lock lock(s_singleton_mutex);
    static cReadCmd* const instance = new cReadCmd;
    return instance;
}

cReadCmd::cReadCmd() : AbstractCmd('c', "exec", true) {}

ProcessResponse* cReadCmd::process(std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length > kLongestRequest)
        return newError("%s", kTooLong);
    if (length < kShortestRequest)
        return newError("%s", kTooShort);
    if (tavrin_getCommand(request) != kExecute)
        return newError("%s", kUnsupported);
    const unsigned long long limit = (*request)[3] * 256ULL + (*request)[4];
    const std::string text(request->begin() + kTextAt, request->end());
    for (const char character : text) {
        if (character < 0x20 || character > 0x7E)
            return newError("%s%02X", kInvalidCharacter, static_cast<unsigned char>(character));
    }
    System::Descriptor output;
    const ProcessResponse result = capture(limit, text.c_str(), output);
    if (result.code != ProcessResponse::kSuccess)
        return new ProcessResponse(result);
    return answerBinary(request, output, kCaptureFile);
}

ProcessResponse* cReadCmd::process(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kTokens)
        return newError(kWrongTokenCount, static_cast<int>(tokens.size()));
    if (!beginsWith(tokens[1], kCommandWord))
        return newError("%s", kUnsupportedAscii);
    const auto limit = static_cast<unsigned long long>(static_cast<long long>(ascii_getInt(tokens[2])));
    const std::string text(tokens[3].begin(), tokens[3].end());
    System::Descriptor output;
    const ProcessResponse result = capture(limit, text.c_str(), output);
    if (result.code != ProcessResponse::kSuccess)
        return new ProcessResponse(result);
    return answerBase64(readWhole(output));
}

ProcessResponse cReadCmd::executeCommand(unsigned long long timeoutSeconds, const char* commandText) {
    System::Descriptor output;
    return capture(timeoutSeconds, commandText, output);
}

ProcessResponse cReadCmd::capture(unsigned long long timeoutSeconds, const char* commandText,
                                  System::Descriptor& output) {
    System::Descriptor readEnd;
    System::Descriptor writeEnd;
    if (!System::openPipe(readEnd, writeEnd))
        return error("%s", kNoPipe);
    output = createCaptureFile();
    if (!output)
        return error("%s", kNoCaptureFile);
    System::Shell shell;
    if (shell.start(readEnd.get(), output.get(), output.get()) != 0)
        return error("%s", kSpawnFailed);
    readEnd.reset();
    const System::ShellResult result =
        shell.feedAndWait(std::move(writeEnd), commandText, limitFrom(timeoutSeconds));
    switch (result.outcome) {
        case System::ShellOutcome::Ended:
            return judgeStatus(result.status, shell.pid());
        case System::ShellOutcome::Killed:
            return error(kKilled, commandText, readWhole(output).c_str());
        case System::ShellOutcome::KillFailed:
            return error(kNotKilled, commandText);
        case System::ShellOutcome::FeedFailed:
            return error(kNotFed, std::strerror(result.error));
        case System::ShellOutcome::WaitFailed:
            break;
    }
    return error(kWaitFailed, result.error);
}

ProcessResponse* cReadCmd::ReadFromFileBinary(std::vector<unsigned char>* request, const char* path) {
    const System::Descriptor file = System::openNode(path, O_RDONLY);
    if (!file)
        return newTavrinError(kCannotOpen, path);
    return answerBinary(request, file, path);
}

ProcessResponse* cReadCmd::answerBinary(std::vector<unsigned char>* request,
                                        const System::Descriptor& file, const char* path) {
    struct stat information {};
    if (::fstat(file.get(), &information) != 0)
        return newTavrinError(kCannotStat, path);
    std::vector<unsigned char> payload(
        static_cast<std::size_t>(std::min(information.st_size, kMaxPayload)));
    const ssize_t count = System::readNodeAt(file.get(), payload.data(), payload.size(), 0);
    if (count < 0)
        return newTavrinError(kCannotRead, path, std::strerror(errno));
    if (count == 0)
        printDiagnostic(string_format(kFileEmpty, path));
    payload.resize(static_cast<std::size_t>(count));
    auto response = std::make_unique<ProcessResponseTavrin>(ProcessResponse::kSuccess, "");
    tavrin_fillDefaultResponse(request, response.get(), payload);
    return response.release();
}

ProcessResponse* cReadCmd::ReadFromFileBase64(const char* path) {
    const System::Descriptor file = System::openNode(path, O_RDONLY);
    if (!file)
        return new ProcessResponseAscii(ProcessResponse::kGenericError, kCannotOpen, path);
    return answerBase64(readWhole(file));
}
