#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace Measuring {

/// The middle value, or the mean of the two in the middle. Of at least one value.
double median(std::vector<double> values);

/// Measures several things in turn, round after round, so that whatever else the machine does in the
/// meantime meets all of them alike.
class Contest {
public:
    /// `measure` yields one round's result. Returns the number of the contender.
    std::size_t add(std::function<double()> measure);

    /// One round that does not count, then as many as given.
    void run(int rounds);

    /// The median over the rounds.
    double result(std::size_t contender) const;

    /// The median over the rounds of one contender's result divided by another's in the same round.
    double ratio(std::size_t contender, std::size_t floor) const;

private:
    struct Contender {
        std::function<double()> measure;
        std::vector<double> results;
    };

    std::vector<Contender> m_contenders;
};

} // namespace Measuring
