#pragma once

#include <string>
#include <string_view>

#include "support/ByteStream.h"

/// STX text ETX LF: what a station sends.
std::string request(const std::string& text);

/// STX # text ETX LF: what the unit sends.
std::string answer(std::string_view text);

/// Both lines with which the unit answers a name that it does not know.
std::string unknown(const std::string& name);

/// Both lines with which a command answers an error, whose code is hexadecimal.
std::string refused(const std::string& command, const std::string& code, const std::string& message);

/// The same with the generic error.
std::string failure(const std::string& command, const std::string& message);

std::string base64(std::string_view bytes);

/// Sends `sent` and expects exactly `received` to come.
void expectExchange(const ByteStream& station, const std::string& sent, const std::string& received);

/// Proves that the unit sent nothing beyond what has been received: the answer to one more request is
/// the next thing that comes.
void expectNothingMore(const ByteStream& station);
