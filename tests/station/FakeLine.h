#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "Steps.h"
#include "client/Target.h"
#include "support/BinaryFrames.h"
#include "support/PseudoTerminal.h"
#include "wire/Descriptor.h"

namespace station {

/// A serial line whose terminal the station opens at `target()`; this is what a unit does at the other
/// end.
class FakeLine : public PseudoTerminal {
public:
    FakeLine();

    const SerialTarget& target() const { return m_target; }

    /// Waits until a station has set the line up, the first one.
    void waitForStation() const;

    /// All that the station has sent and nobody has received yet. The station must have finished.
    std::string receiveRest() const;

private:
    SerialTarget m_target;
};

/// Plays a script at the unit's end of a line, on a thread of its own; the object waits for its end.
class LineScript {
public:
    explicit LineScript(std::function<void()> script);
    /// What arrives first is there when this returns.
    LineScript(FakeLine& line, const Steps& steps);
    ~LineScript() { m_thread.join(); }
    LineScript(const LineScript&) = delete;
    LineScript& operator=(const LineScript&) = delete;

private:
    std::thread m_thread;
};

/// The status frame of a unit built at 2026/11/21 09:03, with board revision 1A.
std::string statusFrame(bool isFirst = false);

/// How the station shows that.
constexpr char kStatusText[] = "\"2026/11/21 09:03\" A024 \"1A\" 4";

} // namespace station
