#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "wire/Descriptor.h"

namespace Measuring {

/// A serial line as fast as the machine: a pseudo-terminal in raw mode, whose near end is the station's.
/// Calls block, for at most a minute without progress; then they throw, as they do for every other
/// failure. One thread at a time.
class TerminalPair {
public:
    TerminalPair();

    /// The path of the far end, for whoever serves it.
    const std::string& farEnd() const { return m_path; }

    /// Makes `node` a name of the far end, in place of whatever has that name.
    void takePlaceOf(const std::string& node) const;

    void send(std::string_view bytes);

    /// As many bytes as asked for; they stay valid until the next call.
    std::string_view receive(std::size_t count);

    /// Sends all the bytes, without a pause, and meanwhile takes in as many as asked for, which stay
    /// valid until the next call.
    std::string_view exchange(std::string_view bytes, std::size_t count);

    /// Whether nothing comes for a while.
    bool isSilent() const;

private:
    void sendSome(std::string_view& bytes);
    void receiveSome(std::size_t count);

    System::Descriptor m_near;
    // Keeps the line alive while nobody serves it.
    System::Descriptor m_far;
    std::string m_path;
    std::string m_received;
};

} // namespace Measuring
