#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Measuring {

/// What a number has to keep to.
struct Bound {
    enum class Side { AtMost, AtLeast };

    Side side;
    double limit;

    static Bound atMost(double limit) { return {Side::AtMost, limit}; }
    static Bound atLeast(double limit) { return {Side::AtLeast, limit}; }

    bool holds(double number) const { return side == Side::AtMost ? number <= limit : number >= limit; }
};

/// One measured number. The bound is on the ratio where there is one, else on the value.
struct Row {
    std::string what;
    double value;
    std::string unit;
    std::optional<double> floor = std::nullopt;
    std::optional<double> ratio = std::nullopt;
    std::optional<Bound> bound = std::nullopt;
};

/// The table of one subject.
class Report {
public:
    explicit Report(std::string title) : m_title(std::move(title)) {}

    void add(Row row) { m_rows.push_back(std::move(row)); }

    /// A line under the table.
    void note(std::string text) { m_notes.push_back(std::move(text)); }

    /// Writes the table to standard output.
    void print() const;

    bool keepsAllBounds() const;

private:
    std::string m_title;
    std::vector<Row> m_rows;
    std::vector<std::string> m_notes;
};

} // namespace Measuring
