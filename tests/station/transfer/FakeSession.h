#pragma once

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "session/Session.h"
#include "transfer/Unit.h"

namespace station {

/// A unit with a scratch buffer and one block device, at the other end of a session: it carries out what
/// it is asked, as a unit does and with its messages, and remembers it. A test may step in.
class FakeSession : public Session {
public:
    /// The device that this unit has.
    static constexpr DeviceId kDevice{180, 1};

    FakeSession();

    std::size_t widen() override { return width; }
    /// Carries the command out.
    void begin(const std::string& name, const std::vector<std::string>& arguments) override;
    Answer finish(const InfoSink& onInfo) override;
    void abandon() override { m_underWay.clear(); }

    std::size_t width = 1; ///< how many commands may be under way
    std::size_t mostUnderWay() const { return m_mostUnderWay; }
    bool isIdle() const { return m_underWay.empty(); }

    /// Called with the request's words and its number, from 1 on, before it is carried out. May throw,
    /// or give an answer in place of the unit's.
    std::function<std::optional<Answer>(const std::string& request, std::size_t number)> before;
    /// Called afterwards with the answer, which it may change.
    std::function<void(const std::string& request, Answer& answer)> after;

    /// The requests so far, with "DATA" in place of bytes that are written.
    const std::vector<std::string>& requests() const { return m_requests; }
    std::size_t count(const std::string& opening) const;

    char* buffer() { return m_buffer.get(); }
    std::string bufferBytes(std::uint64_t offset, std::size_t count) const;

    std::string device;          ///< its content
    std::size_t blockSize = 512; ///< bytes
    bool isWritable = true;
    bool isOpen = false;

private:
    /// What the unit has said to a command, or why it has not.
    struct Outcome {
        std::vector<std::string> messages;
        Answer answer;
        std::exception_ptr failure;
    };

    Answer run(const std::string& name, const std::vector<std::string>& arguments,
               const InfoSink& onInfo);
    Answer carryOut(const std::string& name, const std::vector<std::string>& arguments,
                    const InfoSink& onInfo);
    Answer memory(const std::vector<std::string>& arguments, const InfoSink& onInfo);
    Answer diagnose(const std::vector<std::string>& arguments, const InfoSink& onInfo) const;
    Answer move(const std::vector<std::string>& arguments, const InfoSink& onInfo);

    // Large and hardly touched: pages that nobody writes take no memory.
    std::unique_ptr<char, decltype(&std::free)> m_buffer;
    std::vector<std::string> m_requests;
    std::deque<Outcome> m_underWay;
    std::size_t m_mostUnderWay = 0;
};

/// An answer that refuses, after the message.
Answer refusal(const Session::InfoSink& onInfo, const std::string& message);

} // namespace station
