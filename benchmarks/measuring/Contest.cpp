#include "measuring/Contest.h"

#include <algorithm>
#include <utility>

namespace Measuring {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    if (values.size() % 2 == 1)
        return values[middle];
    return (values[middle - 1] + values[middle]) / 2;
}

std::size_t Contest::add(std::function<double()> measure) {
    m_contenders.push_back({std::move(measure), {}});
    return m_contenders.size() - 1;
}

void Contest::run(int rounds) {
    for (const Contender& contender : m_contenders)
        contender.measure();
    for (int round = 0; round < rounds; ++round)
        for (Contender& contender : m_contenders)
            contender.results.push_back(contender.measure());
}

double Contest::result(std::size_t contender) const {
    return median(m_contenders[contender].results);
}

double Contest::ratio(std::size_t contender, std::size_t floor) const {
    std::vector<double> ratios = m_contenders[contender].results;
    for (std::size_t round = 0; round < ratios.size(); ++round)
        ratios[round] /= m_contenders[floor].results[round];
    return median(ratios);
}

} // namespace Measuring
