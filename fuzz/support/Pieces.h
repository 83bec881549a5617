#pragma once

#include <cstddef>
#include <iterator>
#include <random>
#include <string_view>
#include <vector>

/// The bytes in pieces, as a peer's may arrive; how they are cut is the number's.
inline std::vector<std::string_view> pieces(std::string_view bytes, unsigned number) {
    constexpr std::size_t kSizes[] = {1, 1, 2, 3, 8, 64, 1000};
    std::minstd_rand random(number + 1);
    std::vector<std::string_view> cut;
    while (!bytes.empty()) {
        cut.push_back(bytes.substr(0, kSizes[random() % std::size(kSizes)]));
        bytes.remove_prefix(cut.back().size());
    }
    return cut;
}
