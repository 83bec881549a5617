#include "measuring/Report.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace Measuring {

namespace {

constexpr std::size_t kColumns = 7;
using Cells = std::array<std::string, kColumns>;

constexpr std::size_t kWhat = 0;
constexpr std::size_t kUnit = 2;
constexpr std::size_t kVerdict = 6;

std::string number(double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), value < 100 ? "%.2f" : "%.0f", value);
    return text.data();
}

std::string number(const std::optional<double>& value) {
    return value ? number(*value) : "-";
}

bool keepsBound(const Row& row) {
    return !row.bound || row.bound->holds(row.ratio.value_or(row.value));
}

std::string boundOf(const Row& row) {
    if (!row.bound)
        return "-";
    return (row.bound->side == Bound::Side::AtMost ? "<= " : ">= ") + number(row.bound->limit);
}

std::string verdictOf(const Row& row) {
    if (!row.bound)
        return "";
    return keepsBound(row) ? "ok" : "over";
}

Cells cellsOf(const Row& row) {
    return {row.what,          number(row.value), row.unit,      number(row.floor),
            number(row.ratio), boundOf(row),      verdictOf(row)};
}

void printLine(const Cells& cells, const std::array<std::size_t, kColumns>& widths) {
    for (std::size_t column = 0; column < kColumns; ++column) {
        const bool isText = column == kWhat || column == kUnit || column == kVerdict;
        const int width = static_cast<int>(widths[column]);
        std::printf(isText ? "  %-*s" : "  %*s", width, cells[column].c_str());
    }
    std::printf("\n");
}

} // namespace

void Report::print() const {
    std::vector<Cells> lines{{"what", "value", "unit", "floor", "ratio", "bound", ""}};
    std::transform(m_rows.begin(), m_rows.end(), std::back_inserter(lines), cellsOf);
    std::array<std::size_t, kColumns> widths{};
    for (const Cells& cells : lines)
        for (std::size_t column = 0; column < kColumns; ++column)
            widths[column] = std::max(widths[column], cells[column].size());

    std::printf("%s\n", m_title.c_str());
    for (const Cells& cells : lines)
        printLine(cells, widths);
    for (const std::string& text : m_notes)
        std::printf("  %s\n", text.c_str());
    std::printf("\n");
}

bool Report::keepsAllBounds() const {
    return std::all_of(m_rows.begin(), m_rows.end(), keepsBound);
}

} // namespace Measuring
