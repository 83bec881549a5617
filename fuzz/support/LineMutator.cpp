// The mutator of the fuzzers whose input is lines.

#include <algorithm>
#include <string>

#include "support/Lines.h"

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
    Lines lines({reinterpret_cast<const char*>(data), size});
    mutate(lines.requests, seed, &RequestMaker::line);
    RequestMaker chance(seed);
    if (chance.below(16) == 0)
        lines.faults = static_cast<std::uint8_t>(chance.below(2) == 0 ? 0 : 1U << chance.below(8));
    const std::string text = lines.text().substr(0, most);
    std::copy(text.begin(), text.end(), data);
    return text.size();
}
