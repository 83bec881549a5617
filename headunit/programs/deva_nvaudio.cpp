// deva-nvaudio [STATEFILE]: the unit's audio driver. It goes into the background, comes back once it is
// ready for signals, and runs until SIGTERM: SIGUSR1 activates it, SIGUSR2 deactivates it.
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>

#include "devices/AudioDriver.h"
#include "unit/Pipe.h"
#include "wire/Descriptor.h"

namespace {

using headunit::AudioState;

constexpr int kFailed = 1;

void letGoOfTerminal() {
    ::setsid();
    System::Descriptor nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (!nothing)
        nothing.reset(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC)); // as good: it takes no bytes
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nothing.get(), stream);
}

void followSignals(const headunit::AudioStateWriter& state, const sigset_t& signals) {
    for (;;) {
        const int signal = ::sigwaitinfo(&signals, nullptr);
        if (signal == SIGTERM)
            return state.write(AudioState::stopped);
        if (signal == SIGHUP) // the starter has ended: from now on the driver ends with the unit
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (signal == SIGUSR1 || signal == SIGUSR2)
            state.write(signal == SIGUSR1 ? AudioState::active : AudioState::inactive);
    }
}

int beDriver(const std::string& path, System::Descriptor ready, const sigset_t& signals) {
    try {
        const headunit::AudioStateWriter state(path);
        state.write(AudioState::inactive);
        letGoOfTerminal();
        ::prctl(PR_SET_PDEATHSIG, SIGHUP);
        const char done = 1;
        if (::write(ready.get(), &done, 1) != 1)
            return kFailed;
        ready.reset();
        followSignals(state, signals);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", headunit::AudioDriver::kProcess, error.what());
        return kFailed;
    }
}

/// Whether the driver in the background got ready.
bool isReady(int pipe) {
    char done = 0;
    ssize_t count;
    do
        count = ::read(pipe, &done, 1);
    while (count < 0 && errno == EINTR);
    return count == 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::string path = argc > 1 ? argv[1] : headunit::kAudioStateFile;
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGUSR1, SIGUSR2, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, nullptr); // before anybody can find the driver by its name
    System::Descriptor reading;
    System::Descriptor writing;
    if (!headunit::openPipe(reading, writing))
        return kFailed;
    const pid_t driver = ::fork();
    if (driver < 0)
        return kFailed;
    if (driver == 0) {
        reading.reset();
        return beDriver(path, std::move(writing), signals);
    }
    writing.reset();
    if (isReady(reading.get()))
        return 0;
    ::waitpid(driver, nullptr, 0); // it must not be found by its name any more
    return kFailed;
}
