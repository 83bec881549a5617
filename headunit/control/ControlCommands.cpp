#include "control/ControlCommands.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>

#include "control/ControlTable.h"
#include "unit/NameList.h"

namespace headunit {
namespace {

/// Looks the first word up and hands the others to its handler, or to its keys. `path` is what stood
/// before the words.
std::string runWords(const ControlRows& rows, UnitDevices& devices, const std::string& path,
                     const ControlArguments& words) {
    const std::string& word = words.front();
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const ControlRow& known) { return known.word == word; });
    if (row == rows.end())
        throw notOneOf(wordsOf(rows), word);
    const ControlArguments arguments(words.begin() + 1, words.end());
    if (arguments.size() < row->fewest || arguments.size() > row->most)
        throw unitError("usage: %s%s", path.c_str(), wholeForm(*row).c_str());
    if (row->keys.empty())
        return row->handler(devices, arguments);
    return runWords(row->keys, devices, path + word + " ", arguments);
}

} // namespace

ControlAnswer ControlCommands::run(std::string_view line) {
    std::istringstream stream{std::string(line)};
    const ControlArguments words{std::istream_iterator<std::string>(stream), {}};
    if (words.empty())
        return {false, "there is no word"};
    try {
        return {true, runWords(controlTable(), m_devices, "", words)};
    } catch (const UnitError& error) {
        return {false, error.what()};
    }
}

} // namespace headunit
