#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "runtime/Condition.h"
#include "runtime/Mutex.h"
#include "runtime/Thread.h"

/// All that the daemon writes to one of its standard streams, in the order of the calls.
///
/// Whoever reads the stream is a peer like any other and may stand still. So nobody waits for it: what
/// is said is kept and written by a thread of the stream's own, and what can be kept no longer is lost.
/// The loss is counted, and said on standard error once the stream takes text again.
class StandardStream : public System::Thread {
public:
    /// In bytes; a text that finds less than this waiting is kept whole.
    static constexpr std::size_t kMostWaiting = std::size_t{1} << 18;

    /// Those of the process; they are never destroyed, since threads may use them until it is gone.
    static StandardStream& output();
    static StandardStream& error();

    /// A loss of `name` is said on `notices`; null stands
    /// for this stream. The descriptor stays the caller's.
    StandardStream(int descriptor, const char* name, StandardStream* notices);

    /// From now on texts are written by the thread. Without it, which also means when it cannot be made,
    /// whoever has something to say writes as much as the stream takes at once, and the rest is lost; so
    /// is all of it while somebody else writes.
    bool start() override;

    /// Any thread; no lock is held while something is written. Text that does not fit into memory is
    /// lost, too.
    void write(std::string_view text) noexcept;

    /// Waits until all has been written or lost, but no longer than this.
    void flush(std::chrono::milliseconds limit);

    /// Writes what waits, for ever.
    void threadLoop(System::Thread* self) override;

private:
    struct Batch {
        std::string text;
        std::string notice; ///< of what was lost, for the stream that losses are told on
    };

    bool takeOver(std::string_view text) noexcept;
    void next(bool wasAttempted, std::size_t lost);
    std::string noticeAfter(std::size_t lost) noexcept;
    std::string endWritingAtOnce(std::size_t lost) noexcept;
    std::size_t writeWaiting(std::string_view text) const;
    std::size_t writeAtOnce(std::string_view text) const;

    const int m_descriptor;
    const char* const m_name;
    StandardStream* const m_notices;

    Batch m_batch; // the thread's

    System::Mutex m_textLock; // guards the rest; never held while writing
    System::Condition m_added;
    System::Condition m_written;
    std::string m_waiting;
    std::size_t m_lost = 0;         // bytes that nobody has been told of
    bool m_isWriting = false;       // the thread
    bool m_isWritingAtOnce = false; // whoever had something to say before there was a thread
    bool m_hasThread = false;
};
