#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

/// Choices that a seed decides: the same seed, the same choices, on every machine. One thread at a time.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : m_random(seed) {}

    /// 0 to `limit` - 1.
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(m_random() % limit); }

    std::uint32_t between(std::uint32_t first, std::uint32_t last) {
        return first + below(last - first + 1);
    }

    bool oneIn(std::uint32_t chances) { return below(chances) == 0; }

    template <typename Choices>
    const auto& oneOf(const Choices& choices) {
        return choices[below(static_cast<std::uint32_t>(std::size(choices)))];
    }

    std::string bytes(std::size_t count) {
        std::string all(count, '\0');
        for (char& byte : all)
            byte = static_cast<char>(below(256));
        return all;
    }

private:
    std::mt19937_64 m_random;
};
