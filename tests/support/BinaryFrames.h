#pragma once

#include <string>
#include <string_view>

/// Frames of the binary protocol, byte by byte.

constexpr std::string_view kAcknowledgement = "\x02\x06";
constexpr std::string_view kStatusRequest = "\x02s";

/// The length byte, then the rest.
std::string framed(std::string_view rest);

std::string debugFrame(std::string_view text);

/// The success that answers the request; each echoed byte that it lacks is zero.
std::string answerFrame(std::string_view request, std::string_view payload = {});

/// The generic error that answers the request.
std::string errorFrame(std::string_view request);

/// All that a request gets that fails with this text.
std::string refusal(std::string_view request, std::string_view text);

/// All that a request gets that fails with this text and is too short to be answered.
std::string unanswerable(std::string_view text);

/// The status of a unit with this build stamp, whether asked for or not.
std::string statusFrame(const std::string& buildStamp, bool sentBefore);

/// What is sent ahead of a startup status that is not the first.
std::string repetitionFrames();

std::string execRequest(unsigned limitSeconds, std::string_view command);
