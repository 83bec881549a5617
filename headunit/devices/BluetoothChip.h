#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace headunit {

/// A Bluetooth controller as its host sees it: takes commands and has events to say, as the Bluetooth
/// Core Specification defines them for reset, the local version and the device address. Other commands
/// are unknown to it; data packets are dropped, as without a connection. Not synchronised.
class BluetoothChip {
public:
    static constexpr char kCommandPacket = 1;
    static constexpr char kEventPacket = 4;

    static constexpr std::size_t kAddressSize = 6;
    static constexpr std::size_t kMostUnsaid = 1000;

    /// A host packet for the chip: its type and its bytes.
    void take(std::string_view packet);

    /// What the chip has to say of itself: a packet as it
    /// is. False, and no effect, when too much is unsaid.
    bool say(std::string packet);

    bool hasSomethingToSay() const { return !m_unsaid.empty(); }

    /// The next packet, type and bytes. There has to be one.
    std::string next();

    /// Forgets what is unsaid.
    void clear() { m_unsaid.clear(); }

    /// Whether commands stay without an answer.
    void setSilent(bool silent) { m_silent = silent; }

    /// As it is written, its highest byte first.
    static std::string address();

    std::size_t unsaid() const { return m_unsaid.size(); }
    std::uint64_t commands() const { return m_commands; } ///< since the start

private:
    void takeCommand(std::string_view command);
    void complete(std::string_view opcode, char status, std::string_view parameters = {});
    void refuse(std::string_view opcode);
    void event(char code, const std::string& parameters);

    std::deque<std::string> m_unsaid;
    bool m_silent = false;
    std::uint64_t m_commands = 0;
};

} // namespace headunit
