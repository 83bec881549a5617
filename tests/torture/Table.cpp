#include "Table.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <ostream>

namespace {

constexpr std::array<const char*, 10> kHeads = {"row",          "link",        "amount",  "seconds",
                                                "answer after", "descriptors", "threads", "children",
                                                "verdict",      "note"};
using Cells = std::array<std::string, kHeads.size()>;

std::string shortened(std::size_t bytes) {
    constexpr std::size_t kKibi = 1024;
    if (bytes < 10 * kKibi)
        return std::to_string(bytes) + " B";
    return bytes < 10 * kKibi * kKibi ? std::to_string(bytes / kKibi) + " KiB"
                                      : std::to_string(bytes / kKibi / kKibi) + " MiB";
}

std::string amountIn(const Amount& amount) {
    std::string text;
    if (amount.requests != 0)
        text += std::to_string(amount.requests) + " requests ";
    if (amount.connections != 0)
        text += std::to_string(amount.connections) + " connections ";
    return amount.bytes != 0 ? text + shortened(amount.bytes) : text;
}

std::string change(std::size_t before, std::size_t after) {
    return std::to_string(before) + " > " + std::to_string(after);
}

std::string tenths(std::chrono::milliseconds time) {
    const auto count = time.count() / 100;
    return std::to_string(count / 10) + "." + std::to_string(count % 10);
}

Cells cellsOf(const Result& result) {
    return {result.row,
            nameOf(result.link),
            amountIn(result.amount),
            tenths(result.duration),
            std::to_string(result.answerTime.count()) + " ms",
            change(result.before.descriptors, result.after.descriptors),
            change(result.before.threads, result.after.threads),
            change(result.before.children, result.after.children),
            result.verdict,
            result.note};
}

} // namespace

void printTable(std::ostream& out, const std::vector<Result>& results) {
    std::vector<Cells> lines(1);
    std::copy(kHeads.begin(), kHeads.end(), lines.front().begin());
    std::transform(results.begin(), results.end(), std::back_inserter(lines), cellsOf);
    std::array<std::size_t, kHeads.size()> widths{};
    for (const Cells& cells : lines)
        for (std::size_t column = 0; column < cells.size(); ++column)
            widths[column] = std::max(widths[column], cells[column].size());
    for (const Cells& cells : lines) {
        std::string line;
        for (std::size_t column = 0; column < cells.size(); ++column)
            line += cells[column] + std::string(widths[column] - cells[column].size() + 2, ' ');
        out << line.substr(0, line.find_last_not_of(' ') + 1) << "\n";
    }
}
