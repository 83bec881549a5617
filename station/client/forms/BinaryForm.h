#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace station {

/// What the payload of a successful answer reads like, which is what the ASCII answer says. Throws
/// `Failure` (`MalformedAnswer`) for a payload that cannot be one to the request.
using AnswerText = std::function<std::string(std::string_view payload)>;

/// One command as it travels over a binary link.
struct BinaryForm {
    std::string frame; ///< complete, with its length byte
    AnswerText text;
};

/// The form of the command `name` with the arguments of its ASCII form. Throws `Failure`
/// (`InvalidRequest`), saying what to do instead, for names and arguments that have none.
///
/// Arguments are what the unit makes of them on an ASCII line, see `CommandArguments`: words that it
/// recognises by their beginning are recognised so, and arguments that it ignores are ignored. Numbers
/// are not cut to their field, though, and what is no number is not taken for 0: both are refused.
BinaryForm binaryForm(std::string_view name, const std::vector<std::string>& arguments);

/// What the forms of a command read like on a line, one each: fields in capitals, what may be left out
/// in brackets.
std::vector<std::string_view> binaryUsages(std::string_view name);

/// The names of the commands that have a form, in their order.
std::vector<std::string_view> binaryFormNames();

} // namespace station
