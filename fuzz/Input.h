#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// A fuzzer's input, taken from its beginning to its end. What is taken when nothing is left is 0 or
/// empty.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : m_rest(reinterpret_cast<const char*>(data), size) {}

    bool isEmpty() const { return m_rest.empty(); }

    std::uint8_t byte() {
        const std::string_view taken = bytes(1);
        return taken.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(taken.front());
    }

    /// In two bytes, the higher one first.
    std::uint16_t word() {
        const unsigned high = byte();
        return static_cast<std::uint16_t>(high << 8 | byte());
    }

    /// As many as there are, at most.
    std::string_view bytes(std::size_t count) {
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest() { return bytes(m_rest.size()); }

private:
    std::string_view m_rest;
};
