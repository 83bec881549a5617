#pragma once

#include <string>

namespace headunit {

/// What a unit says to something that it was asked for.
struct ControlAnswer {
    bool done = true;
    std::string text; ///< without its last line end; why not, when it was not done
};

} // namespace headunit
