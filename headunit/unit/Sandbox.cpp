#include "unit/Sandbox.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr char kEntered = '\x06';
constexpr char kInstead[] =
    "; allow unprivileged user namespaces here, or in a disposable container set the unit up on the "
    "container itself with 'headunit run --in-place'";

struct Pipe {
    System::Descriptor reading;
    System::Descriptor writing;
};

Pipe makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw systemError("cannot make a pipe", errno);
    Pipe pipe{System::Descriptor(ends[0]), System::Descriptor(ends[1])};
    ::fcntl(pipe.reading.get(), F_SETFL, O_NONBLOCK);
    return pipe;
}

std::string whatIsThere(int pipe) {
    std::string text;
    std::array<char, 512> block;
    for (;;) {
        const ssize_t count = ::read(pipe, block.data(), block.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return text;
        text.append(block.data(), static_cast<std::size_t>(count));
    }
}

std::string onOneLine(std::string text) {
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text.empty() ? "it gives no reason" : text;
}

} // namespace

Sandbox::Sandbox(const SandboxLayout& layout, const std::vector<std::string>& launcher,
                 const std::vector<std::string>& command) {
    Pipe complaints = makePipe();
    // Inherited through bwrap on purpose: no O_CLOEXEC.
    const System::Descriptor standardError(::dup(STDERR_FILENO));
    if (!standardError)
        throw systemError("cannot pass standard error on", errno);

    std::vector<std::string> whole = sandboxArguments(layout);
    whole.insert(whole.end(), launcher.begin(), launcher.end());
    whole.insert(whole.end(), {"--stderr", std::to_string(standardError.get()), "--"});
    whole.insert(whole.end(), command.begin(), command.end());
    try {
        m_bwrap = std::make_unique<ChildProcess>(whole, complaints.writing.get());
    } catch (const UnitError& error) {
        throw UnitError(std::string(error.what()) + " (Debian package bubblewrap)" + kInstead);
    }
    m_complaints = std::move(complaints.reading);
}

std::optional<int> Sandbox::ended() {
    const std::optional<int> status = m_bwrap->ended();
    if (!status)
        return status;
    m_said += whatIsThere(m_complaints.get());
    if (m_said.find(kEntered) == std::string::npos)
        throw UnitError("bwrap cannot build the unit here (" + onOneLine(m_said) + ")" + kInstead);
    return status;
}

void enteredSandbox(int standardError) {
    System::Descriptor outer(standardError);
    while (::write(STDERR_FILENO, &kEntered, 1) < 0 && errno == EINTR) {
    }
    ::dup2(outer.get(), STDERR_FILENO);
}

} // namespace headunit
