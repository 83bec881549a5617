#pragma once

#include <tuple>
#include <vector>

/// A table of cases. What its columns are called is said where it is read:
/// `for (const auto& [text, number] : Rows<const char*, int>{{"1", 1}, {"0x10", 16}})`.
template <typename... Columns>
using Rows = std::vector<std::tuple<Columns...>>;
