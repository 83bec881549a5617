#include "devices/FolderWatch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "unit/Pipe.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr std::size_t kBlock = 4096;

/// The child: holds the watch, and nothing else of its parent's, until the parent does not any more.
[[noreturn]] void outlive(int watch, int parentsEnd) {
    constexpr int kWatch = 0;
    constexpr int kParentsEnd = 1;
    constexpr int kRest = 2;
    const int movedEnd = ::fcntl(parentsEnd, F_DUPFD, kRest); // clear of the two numbers
    const int movedWatch = ::fcntl(watch, F_DUPFD, kRest);
    ::dup2(movedWatch, kWatch);
    ::dup2(movedEnd, kParentsEnd);
    ::close_range(kRest, ~0U, 0);
    char none;
    while (::read(kParentsEnd, &none, 1) < 0 && errno == EINTR) {
    }
    ::_exit(0);
}

} // namespace

FolderWatch::FolderWatch(EventLoop& loop, std::function<void(const std::string&)> changed)
    : EventSource(loop), m_changed(std::move(changed)) {}

FolderWatch::~FolderWatch() {
    System::Descriptor childsEnd;
    System::Descriptor parentsEnd;
    if (!m_notifier || !openPipe(childsEnd, parentsEnd))
        return;
    if (::fork() == 0)
        outlive(m_notifier.get(), childsEnd.get());
    m_notifier.reset(); // before the pipe's end: the last one to let go is the one who waits
}

void FolderWatch::start(const std::string& folder) {
    System::Descriptor notifier(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!notifier || ::inotify_add_watch(notifier.get(), folder.c_str(), IN_MODIFY | IN_MOVED_TO) < 0)
        throw systemError("cannot watch " + folder, errno);
    m_notifier = std::move(notifier);
}

short FolderWatch::awaitedEvents() const {
    return POLLIN;
}

void FolderWatch::onEvents(short /*events*/) {
    alignas(inotify_event) std::array<char, kBlock> block;
    const ssize_t count = ::read(m_notifier.get(), block.data(), block.size());
    for (ssize_t at = 0; at < count;) {
        const auto* event = reinterpret_cast<const inotify_event*>(block.data() + at);
        if (event->len > 0)
            m_changed(event->name);
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
}

} // namespace headunit
