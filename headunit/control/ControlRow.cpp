#include "control/ControlRow.h"

#include "unit/NameList.h"

namespace headunit {

std::string wholeForm(const ControlRow& row) {
    std::vector<std::string> parts{std::string(row.word)};
    if (!row.keys.empty())
        parts.push_back(listed(wordsOf(row.keys), "|"));
    if (!row.form.empty())
        parts.emplace_back(row.form);
    return listed(parts, " ");
}

std::string shortForm(const ControlRow& row) {
    const std::string whole = wholeForm(row);
    return whole.substr(0, whole.find(" ["));
}

std::vector<std::string_view> wordsOf(const ControlRows& rows) {
    std::vector<std::string_view> words;
    for (const ControlRow& row : rows)
        words.push_back(row.word);
    return words;
}

} // namespace headunit
