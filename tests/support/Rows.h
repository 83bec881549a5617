#pragma once

#include <string>
#include <tuple>
#include <vector>

/// A table of cases. What its columns are called is said where it is read:
/// `for (const auto& [text, number] : Rows<const char*, int>{{"1", 1}, {"0x10", 16}})`.
template <typename... Columns>
using Rows = std::vector<std::tuple<Columns...>>;

/// What a test suite calls a case whose row has a title.
inline constexpr auto titleOf = [](const auto& info) { return std::string(info.param.title); };
