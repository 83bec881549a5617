#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "devices/UnitDevices.h"

namespace headunit {

using ControlArguments = std::vector<std::string>;

/// One word that a user may say to a unit, and all there is to know about it: who adds a word writes one
/// row, where its handler is. The word may be a key: then its arguments begin behind it, as in
/// "wlan late MILLISECONDS".
struct ControlRow {
    /// Does it and returns the answer's text, which is empty when there is nothing to tell. Throws
    /// UnitError for what cannot be done. Called on the event loop's thread with as many arguments as
    /// the row allows; does not block.
    using Handler = std::string (*)(UnitDevices& devices, const ControlArguments& arguments);

    std::string_view word;
    std::size_t fewest;             ///< arguments
    std::size_t most;               ///< arguments
    std::string_view form;          ///< of the arguments, as the user is shown it: "NUMBER [REQUESTS]"
    Handler handler;                ///< null when there are keys
    std::vector<ControlRow> keys{}; ///< the rows of the first argument, which `form` leaves out
};

using ControlRows = std::vector<ControlRow>;

/// The row's word with all its keys and the form of its arguments: "wlan manager|late VALUE [VALUE]".
std::string wholeForm(const ControlRow& row);

/// The same without arguments that may be left out.
std::string shortForm(const ControlRow& row);

std::vector<std::string_view> wordsOf(const ControlRows& rows);

} // namespace headunit
