#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "model/Request.h"

constexpr std::uint32_t kGenericError = 0x01010000;

/// Stands in a message for a number that nobody can know.
constexpr char kSomeNumber[] = "{number}";

/// What shows in the unit, outside the daemon, once the request has been answered.
struct Effect {
    std::string what;
    std::function<bool()> holds;
};

/// What has to come back for one request, whichever link it came over.
struct Answer {
    enum class Kind { Success, Refusal, Nothing };

    /// `content` is the text behind a line's name, or a frame's payload.
    static Answer success(std::string content) { return {Kind::Success, std::move(content), 0, {}, {}}; }
    /// The success that has nothing to tell.
    static Answer done(const Request& request) { return success(request.isFrame() ? "" : "ok"); }
    static Answer refusal(std::uint32_t code, std::string message) {
        return {Kind::Refusal, std::move(message), code, {}, {}};
    }
    static Answer failure(std::string message) { return refusal(kGenericError, std::move(message)); }
    static Answer nothing() { return {Kind::Nothing, {}, 0, {}, {}}; }

    bool succeeds() const { return kind == Kind::Success; }

    Kind kind;
    std::string content; ///< of a refusal the message
    std::uint32_t code;
    std::string echo; ///< what the frame repeats, where that is not the request's own
    std::vector<Effect> effects;
};

/// Whether there is an answer behind the messages: a frame may be too short for one.
bool isAnswered(const Request& request, const Answer& answer);

/// All that the link carries back. `name` is the command that answers.
std::string onTheWire(const Request& request, const Answer& answer, const std::string& name);

/// Whether this came, some number in the place of `kSomeNumber`, which may be in the first message.
bool isAsExpected(const Request& request, const std::string& received, std::string expected);

/// printf's formatting, for the messages.
std::string formatted(const char* format, ...) __attribute__((format(printf, 1, 2)));
