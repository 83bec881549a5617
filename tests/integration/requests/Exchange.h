#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

constexpr std::uint32_t kGenericError = 0x01010000;

/// What has to come back for one request.
struct Expected {
    enum class Kind {
        Exactly,    ///< a success with this content
        Bytes,      ///< a success with `count` bytes, of which the first are `content`
        Refusal,    ///< the error `code`, with the message `content` where that is not empty
        Nothing,    ///< an empty answer, which is none in the binary protocol
        Unanswered, ///< a message, but no answer: the request is too short for one
    };

    Kind kind;
    std::string content;
    std::size_t count = 0;
    std::uint32_t code = 0;

    static Expected exactly(std::string content) { return {Kind::Exactly, std::move(content)}; }
    static Expected bytes(std::size_t count, std::string first = {}) {
        return {Kind::Bytes, std::move(first), count};
    }
    static Expected refusal(std::uint32_t code, std::string message = {}) {
        return {Kind::Refusal, std::move(message), 0, code};
    }
    static Expected nothing() { return {Kind::Nothing, {}}; }
    static Expected unanswered() { return {Kind::Unanswered, {}}; }
};

/// One request in both of its forms, of which one is sent.
struct Exchange {
    std::string line;       ///< the text of the ASCII request
    Expected lineExpected;  ///< its content is the answer's text behind the command's name
    std::string frame;      ///< the binary request behind its length byte
    Expected frameExpected; ///< its content is the answer's payload
    std::string echo = {};  ///< what the binary answer repeats, where that is not the request's own
};
