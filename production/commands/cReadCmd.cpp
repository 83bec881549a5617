#include "commands/cReadCmd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "commands/FileContent.h"
#include "core/Diagnostics.h"
#include "core/TokenText.h"
#include "platform/Descriptors.h"
#include "platform/Node.h"
#include "platform/Shell.h"
#include "platform/Uninterrupted.h"
#include "runtime/OnlyObject.h"

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

System::Descriptor openCaptureFile(int flags) {
    return System::Descriptor(System::uninterrupted(
        [flags] { return ::open(kCaptureFile, O_RDWR | O_CLOEXEC | flags, kCaptureMode); }));
}

/// What stands there and cannot be removed: another user's file in a folder that protects it. Empty when
/// it is no file.
System::Descriptor truncateCaptureFile() {
    struct stat seen {};
    if (::lstat(kCaptureFile, &seen) != 0 || !S_ISREG(seen.st_mode))
        return {};
    // Without waiting, since it may have become a pipe.
    System::Descriptor file = openCaptureFile(O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    struct stat opened {};
    // Compared, since not every system refuses to follow a link that was put in its place meanwhile.
    if (!file || !System::nodeStatus(file.get(), opened) || opened.st_dev != seen.st_dev ||
        opened.st_ino != seen.st_ino ||
        System::uninterrupted([&] { return ::ftruncate(file.get(), 0); }) != 0)
        return {};
    return file;
}

/// A file of its own for each command: what an earlier command left running keeps the earlier file, and
/// O_EXCL does not follow a link that was put in its place.
System::Descriptor createCaptureFile() {
    if (::unlink(kCaptureFile) != 0 && errno != ENOENT)
        return truncateCaptureFile();
    return openCaptureFile(O_CREAT | O_EXCL);
}

Answer judgeStatus(int status, int pid) {
    if ((status & 0xFF) == 0)
        return success();
    if ((status & 0xFF00) == 0)
        return genericError(kSignalled, pid, status & 0x7F);
    if (status == kTimeoutStatus)
        return genericError(kExitedWithTimeout, pid);
    return genericError(kExitedOtherwise, pid, status);
}

/// "Process %s was killed after timeout\nstdout+err:\n%s\n", put together in the place where the output,
/// which may be huge, is read to.
Answer killedAfterTimeout(const char* commandText) {
    Answer response = failure(ProcessResponse::kGenericError);
    std::string& text = response->message;
    text = std::string("Process ") + commandText + " was killed after timeout\nstdout+err:\n";
    const std::size_t outputAt = text.size();
    if (const System::Descriptor file = System::openNode(kCaptureFile, O_RDONLY)) {
        const int error = FileContent::append(file, text);
        if (const std::size_t zero = text.find('\0', outputAt); zero != std::string::npos)
            text.resize(zero);
        if (error != 0)
            text += string_format(kCannotRead, kCaptureFile, std::strerror(error));
    }
    text += '\n';
    return response;
}

/// Null when a file is open and tells what it is.
Answer checkReadable(const System::Descriptor& file, const char* path, struct stat& information) {
    if (!file)
        return genericError(kCannotOpen, path);
    if (!System::nodeStatus(file.get(), information))
        return genericError(kCannotStat, path);
    return nullptr;
}

/// As many bytes as one frame holds, or all.
Answer readFirstBytes(const char* path, std::vector<unsigned char>& bytes) {
    const System::Descriptor file = System::openNode(path, O_RDONLY);
    struct stat information {};
    if (Answer refusal = checkReadable(file, path, information))
        return refusal;
    std::string piece(static_cast<std::size_t>(std::min(information.st_size, kMaxPayload)), '\0');
    if (const int error = FileContent::fill(file, piece, 0); error != 0)
        return genericError(kCannotRead, path, std::strerror(error));
    if (piece.empty())
        printDiagnostic(kFileEmpty, path);
    bytes.assign(piece.begin(), piece.end());
    return success();
}

std::chrono::nanoseconds limitFrom(unsigned long long seconds) {
    constexpr unsigned long long kLongest = std::numeric_limits<std::chrono::nanoseconds::rep>::max();
    // Unsigned on purpose: a negative number of seconds wraps to a limit that is never reached.
    const unsigned long long nanoseconds = seconds * kNanosecondsPerSecond;
    return std::chrono::nanoseconds(static_cast<std::chrono::nanoseconds::rep>(
        nanoseconds == 0 ? kDefaultLimit : std::min(nanoseconds, kLongest)));
}

} // namespace

std::string readFileToString(const char* path) {
    std::string content;
    const int failure = FileContent::append(System::openNode(path, O_RDONLY), content);
    if (failure == ENOMEM)
        throw std::bad_alloc();
    return content;
}

System::Mutex cReadCmd::s_singleton_mutex(System::Mutex::Normal);

cReadCmd* cReadCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new cReadCmd; });
}

cReadCmd::cReadCmd() : AbstractCmd('c', "exec", true) {}

Answer cReadCmd::run(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length > kLongestRequest)
        return genericError(kTooLong);
    if (length < kShortestRequest)
        return genericError(kTooShort);
    if (tavrin_getCommand(request) != kExecute)
        return genericError(kUnsupported);
    const unsigned long long limit = (*request)[3] * 256ULL + (*request)[4];
    const std::string text(request->begin() + kTextAt, request->end());
    for (const char character : text) {
        if (character < 0x20 || character > 0x7E)
            return genericError("%s%02X", kInvalidCharacter, static_cast<unsigned char>(character));
    }
    if (Answer result = executeCommand(limit, text.c_str()); failed(*result))
        return result;
    return ReadFromFileBinary(request, kCaptureFile);
}

Answer cReadCmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kTokens)
        return genericError(kWrongTokenCount, static_cast<int>(tokens.size()));
    if (!beginsWith(tokens[1], kCommandWord))
        return genericError(kUnsupportedAscii);
    const auto limit = static_cast<unsigned long long>(static_cast<long long>(ascii_getInt(tokens[2])));
    const std::string text(tokens[3].begin(), tokens[3].end());
    if (Answer result = executeCommand(limit, text.c_str()); failed(*result))
        return result;
    return ReadFromFileBase64(kCaptureFile);
}

Answer cReadCmd::executeCommand(unsigned long long timeoutSeconds, const char* commandText) {
    System::Descriptor readEnd;
    System::Descriptor writeEnd;
    if (!System::openPipe(readEnd, writeEnd))
        return genericError(kNoPipe);
    System::Descriptor output = createCaptureFile();
    if (!output)
        return genericError(kNoCaptureFile);
    System::Shell shell;
    if (shell.start(readEnd.get(), output.get(), output.get()) != 0)
        return genericError(kSpawnFailed);
    readEnd.reset();
    output.reset();
    const System::ShellResult result =
        shell.feedAndWait(std::move(writeEnd), commandText, limitFrom(timeoutSeconds));
    switch (result.outcome) {
        case System::ShellOutcome::Ended:
            return judgeStatus(result.status, shell.pid());
        case System::ShellOutcome::Killed:
            return killedAfterTimeout(commandText);
        case System::ShellOutcome::KillFailed:
            return genericError(kNotKilled, commandText);
        case System::ShellOutcome::FeedFailed:
            return genericError(kNotFed, std::strerror(result.error));
        case System::ShellOutcome::WaitFailed:
            break;
    }
    return genericError(kWaitFailed, result.error);
}

Answer cReadCmd::ReadFromFileBinary(const std::vector<unsigned char>* request, const char* path) {
    std::vector<unsigned char> payload;
    Answer result = readFirstBytes(path, payload);
    return failed(*result) ? failureIn<ProcessResponseTavrin>(result)
                           : tavrin_answer(request, std::move(result), payload);
}

Answer cReadCmd::ReadFromFileBase64(const char* path) {
    const System::Descriptor file = System::openNode(path, O_RDONLY);
    struct stat information {};
    if (Answer refusal = checkReadable(file, path, information))
        return failureIn<ProcessResponseAscii>(refusal);
    std::string text = "base64(";
    if (const int error = FileContent::appendBase64(file, text); error != 0)
        return failureIn<ProcessResponseAscii>(genericError(kCannotRead, path, std::strerror(error)));
    text += ')';
    return asciiSuccess(std::move(text));
}
