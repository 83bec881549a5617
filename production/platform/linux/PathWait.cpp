#include "platform/PathWait.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "platform/PatientPoll.h"
#include "wire/Descriptor.h"

namespace System {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kNewNames = IN_CREATE | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

bool exists(const char* path) {
    struct stat information {};
    return ::stat(path, &information) == 0;
}

/// The nearest folder above `path` that exists: the next name on the way to it appears there.
std::string nearestFolder(std::string path) {
    do {
        const std::size_t slash = path.rfind('/');
        if (slash == std::string::npos)
            return ".";
        path.resize(slash == 0 ? 1 : slash);
    } while (path != "/" && !exists(path.c_str()));
    return path;
}

/// Makes news of the next name on the way to `path` known.
void watchFor(int notifier, const std::string& path) {
    std::string watched;
    // A folder that appears just before its parent is watched goes unnoticed: look again.
    for (std::string folder = nearestFolder(path); folder != watched; folder = nearestFolder(path)) {
        ::inotify_add_watch(notifier, folder.c_str(), kNewNames);
        watched = folder;
    }
}

/// Waits for events and forgets them, or for the deadline.
void waitForNews(int notifier, Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0)
        return;
    pollfd event{notifier, POLLIN, 0};
    if (patientPoll(&event, notifier < 0 ? 0 : 1, static_cast<int>(left.count())) <= 0)
        return;
    alignas(inotify_event) std::array<char, 4096> events;
    while (::read(notifier, events.data(), events.size()) > 0) {
    }
}

} // namespace

// Without a notifier (too many are in use) only the deadline ends a wait.
PathWait::PathWait() : m_notifier(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

bool PathWait::waitFor(const char* path, std::chrono::milliseconds longest) {
    if (exists(path))
        return true;
    const auto deadline = Clock::now() + longest;
    while (Clock::now() < deadline) {
        if (m_notifier)
            watchFor(m_notifier.get(), path);
        // What appeared before the watch stood is not told of.
        if (exists(path))
            return true;
        waitForNews(m_notifier.get(), deadline);
    }
    return exists(path);
}

} // namespace System
