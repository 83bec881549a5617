#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "wire/Descriptor.h"

/// A device manager that does what the test says: a thread behind a SOCK_SEQPACKET socket. It keeps each
/// request byte for byte. A request that the script has no step for fails the test, and so does a step
/// that no request came for. Any thread may call it. What cannot be set up throws std::runtime_error.
class ScriptedManager {
public:
    using Bytes = std::vector<unsigned char>;

    /// Appears at `path`, in place of whatever is there, and is gone from it when it is destroyed.
    explicit ScriptedManager(std::string path);
    /// Appears at `path` under a name of its own, as it would for somebody who sees another file tree.
    ScriptedManager(const std::string& path, const std::string& ownName);
    ~ScriptedManager();
    ScriptedManager(const ScriptedManager&) = delete;
    ScriptedManager& operator=(const ScriptedManager&) = delete;

    // --- What happens to the next requests, one step each, in their order. ---

    /// The result, and bytes for the reply parts.
    void willAnswer(std::int32_t result, const Bytes& bytes = {});
    /// A packet that need not be a proper answer.
    void willSend(const Bytes& packet);
    void willSayNothing();
    /// Ends the connection instead of an answer, and is there for the next one.
    void willHangUp();
    /// Ends the connection instead of an answer, and is gone from its path.
    void willVanish();

    /// Says something unasked, or late, to who connected last.
    void say(const Bytes& packet);
    /// Ends the connection that was made last.
    void hangUp();

    std::vector<Bytes> requests() const;
    Bytes lastRequest() const;
    /// Waits until so many requests have come. False when the patience is exhausted.
    bool hasHeard(std::size_t requests) const;
    /// How many have connected so far, up to this moment.
    int connections();
    /// Waits until all who connected have gone. False when the patience is exhausted.
    bool isLeftAlone() const;

private:
    using Step = std::function<void()>;

    void serve();
    void accept();
    void receive(std::size_t connection);
    void send(const Bytes& packet);
    void leavePath();

    std::string m_path;
    System::Descriptor m_wake; // a byte has the thread look again, its end has it stop
    System::Descriptor m_waker;

    mutable std::mutex m_mutex; // guards all that follows but the thread
    System::Descriptor m_listening;
    std::vector<System::Descriptor> m_connections;
    std::deque<Step> m_script;
    std::vector<Bytes> m_requests;
    int m_accepted = 0;

    std::thread m_thread;
};

/// Numbers as requests and answers carry them: 32 bits, the least significant byte first.
ScriptedManager::Bytes littleEndian(const std::vector<std::uint32_t>& numbers);

/// One after the other.
ScriptedManager::Bytes joined(const std::vector<ScriptedManager::Bytes>& parts);

/// So many bytes, counting up from `first`.
ScriptedManager::Bytes counting(std::size_t count, unsigned char first = 1);
