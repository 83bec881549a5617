#pragma once

#include <string>
#include <string_view>

#include "unit/UnitError.h"

namespace headunit {

/// The names one after the other, with `separator` between them and `last` before the last one.
template <typename Names>
std::string listed(const Names& names, std::string_view separator, std::string_view last) {
    std::string list;
    std::size_t left = names.size();
    for (const std::string_view name : names) {
        if (left != names.size())
            list.append(left == 1 ? last : separator);
        list.append(name);
        --left;
    }
    return list;
}

template <typename Names>
std::string listed(const Names& names, std::string_view separator = ", ") {
    return listed(names, separator, separator);
}

/// What to throw for a text that should have been one of these names.
template <typename Names>
UnitError notOneOf(const Names& names, const std::string& text) {
    return unitError("'%s' is not one of %s", text.c_str(), listed(names).c_str());
}

} // namespace headunit
