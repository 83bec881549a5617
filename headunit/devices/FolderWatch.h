#pragma once

#include <functional>
#include <string>

#include "serial/EventLoop.h"

namespace headunit {

/// Tells at once when somebody wrote a file in a folder or put one there,
/// whoever it was: the kernel reports it, nothing is looked at again and
/// again. For the loop's thread or while the loop does not run.
class FolderWatch : private EventSource {
public:
    /// `changed` gets the file's name.
    FolderWatch(EventLoop& loop, std::function<void(const std::string&)> changed);

    /// Comes back at once, although the kernel takes some 10 ms to take a watch down: a child process
    /// that ends by itself is left with that.
    ~FolderWatch() override;

    /// Watches this folder of the host from now on. Called once. Throws UnitError.
    void start(const std::string& folder);

private:
    int descriptor() const override { return m_notifier.get(); }
    short awaitedEvents() const override;
    void onEvents(short events) override;

    std::function<void(const std::string&)> m_changed;
    System::Descriptor m_notifier;
};

} // namespace headunit
