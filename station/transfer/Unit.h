#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "session/Interruption.h"
#include "session/Refused.h"
#include "session/Session.h"

namespace station {

/// The unit's scratch buffer, in bytes. Its last byte is out of reach.
constexpr std::uint64_t kBufferSize = std::uint64_t{128} * 1024 * 1024;

/// The most that one memory request moves, in bytes.
constexpr std::size_t kMostRequestBytes = 244;

/// One of the unit's block devices.
struct DeviceId {
    unsigned type = 0; ///< 177 to 180
    unsigned id = 0;
};

/// The unit's commands that a transfer consists of. Every call blocks until all is answered and
/// throws `Failure`, `Refused`, or `Interrupted` when an interruption came before the request or is
/// not answered in time; only `closeDevice` is carried out in spite of one. Offsets are bytes in the
/// scratch buffer. One thread at a time; the session must outlive the object.
class Unit {
public:
    Unit(Session& session, const Interruption& interruption, Session::InfoSink onInfo)
        : m_session(session), m_interruption(interruption), m_onInfo(std::move(onInfo)) {}

    /// Hears how many bytes from the beginning have been moved.
    using Moved = std::function<void(std::size_t count)>;

    /// In as many requests as it takes, some of them at once where the session can do that. False when
    /// the unit says that some bytes arrived damaged; then others may not have been sent.
    bool writeMemory(std::uint64_t offset, std::string_view bytes, const Moved& onMoved);

    /// The same the other way. Nothing when some bytes arrived damaged.
    std::optional<std::string> readMemory(std::uint64_t offset, std::size_t count, const Moved& onMoved);

    /// Of at least `Checksum::kFewestBytes`.
    std::uint32_t checksum(std::uint64_t offset, std::uint64_t length);

    void openDevice(const DeviceId& device);
    void closeDevice(const DeviceId& device);

    /// Between a device and the buffer. Return the number
    /// of bytes moved, which may be fewer than wanted.
    std::uint64_t readBlocks(const DeviceId& device, std::uint64_t first, std::uint64_t count,
                             std::uint64_t offset);
    std::uint64_t writeBlocks(const DeviceId& device, std::uint64_t first, std::uint64_t count,
                              std::uint64_t offset);

private:
    using Arguments = std::vector<std::string>;

    /// What the request for a piece of memory is.
    using PieceRequest = std::function<Arguments(std::size_t at, std::size_t count)>;
    /// Takes its answer. False when the piece arrived damaged.
    using PieceAnswer = std::function<bool(std::size_t at, std::size_t count, const Answer& answer)>;

    Answer execute(const std::string& name, const Arguments& arguments) {
        return carryOut(m_session, name, arguments, m_onInfo);
    }
    bool moveMemory(std::size_t total, const PieceRequest& request, const PieceAnswer& take);
    std::uint64_t moveBlocks(const char* operation, const DeviceId& device, const Arguments& rest);

    Session& m_session;
    const Interruption& m_interruption;
    Session::InfoSink m_onInfo;
};

} // namespace station
