#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/RequestMaker.h"

/// A fuzzer's input that is text, which a mutator of its own changes: its first character says what
/// fails in the unit, '0' for nothing, and the rest is lines.
struct Lines {
    std::uint8_t faults = 0;
    Requests requests;

    explicit Lines(std::string_view text) {
        constexpr char kNoFaults = '0';
        if (text.empty())
            return;
        faults = static_cast<std::uint8_t>(text.front() - kNoFaults);
        text.remove_prefix(1);
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            requests.emplace_back(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }

    std::string text() const {
        std::string text(1, static_cast<char>(faults + '0'));
        for (const std::string& request : requests)
            text += request + "\n";
        return text;
    }
};
