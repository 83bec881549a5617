#pragma once

#include <string_view>

#include "client/forms/BinaryForm.h"
#include "client/forms/CommandArguments.h"

namespace station {

/// One form of a command: what it reads like on a line, and what it is as a frame.
struct FormRow {
    /// The command's name and its arguments. A word in small letters has to be there, if only as the
    /// beginning of an argument; one in capitals is a field. "..." at the end: more arguments are
    /// ignored, as the unit does.
    std::string_view usage;
    /// The command's id, as a letter or two hexadecimal digits, and what follows: bytes as two
    /// hexadecimal digits, and fields. A field is a number in one byte, with ":4" behind it in four, and
    /// with ":level" 0 or 1 as what a port has for it.
    std::string_view frame;
    /// What the payload of an answer reads like.
    AnswerText (*answer)();

    std::string_view name() const { return usage.substr(0, usage.find(' ')); }

    /// Whether these are its arguments.
    bool takes(const CommandArguments& arguments) const;

    /// Throws `Failure` (`InvalidRequest`) for an argument that is not what its field wants.
    BinaryForm form(const CommandArguments& arguments) const;
};

} // namespace station
