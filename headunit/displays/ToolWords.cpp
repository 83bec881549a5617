#include "displays/ToolWords.h"

#include <charconv>

#include "displays/DisplayState.h"
#include "unit/UnitError.h"

namespace headunit {

int toolNumber(const std::string& word) {
    int number = 0;
    const auto [stopped, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || stopped != word.data() + word.size())
        throw unitError("'%s' is not a number", word.c_str());
    return number;
}

int displayNumber(const std::string& word) {
    const int display = toolNumber(word);
    if (!DisplayState::isDisplay(display))
        throw unitError("there is no display %s, only 0 and 4", word.c_str());
    return display;
}

} // namespace headunit
