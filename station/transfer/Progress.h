#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>

namespace station {

/// Shows a person how a transfer goes. Sizes are bytes. One thread.
class Progress {
public:
    virtual ~Progress() = default;

    virtual void begin(std::uint64_t total) = 0;
    /// Called for each request, so cheap; goes back when a part is repeated.
    virtual void at(std::uint64_t done) = 0;
    /// Makes room for other text on the same terminal; `at` draws again.
    virtual void pause() = 0;
};

enum class ProgressMode {
    Bar,   ///< one line that is drawn again and again
    Plain, ///< a line for each tenth
    None,
};

using ProgressClock = std::function<std::chrono::steady_clock::time_point()>;

/// Draws to `out`, which must outlive the object, with lines of at most `width` columns.
std::unique_ptr<Progress> makeProgress(ProgressMode mode, std::ostream& out, std::size_t width,
                                       ProgressClock clock);

/// For example "640 B" or "1.7 MiB".
std::string sizeText(std::uint64_t bytes);

} // namespace station
