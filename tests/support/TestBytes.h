#pragma once

#include <algorithm>
#include <numeric>
#include <random>
#include <string>

/// Each value once, from 0 on.
inline std::string everyByte() {
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

/// The same ones in every run, without a period that a block could have.
inline std::string variedBytes(std::size_t count) {
    std::minstd_rand random(1);
    std::string bytes(count, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random() >> 8); });
    return bytes;
}
