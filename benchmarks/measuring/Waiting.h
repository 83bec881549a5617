#pragma once

#include <functional>
#include <string>

namespace Measuring {

/// Looks every millisecond whether the condition holds;
/// throws after ten seconds, naming what did not happen.
void waitUntil(const std::function<bool()>& condition, const std::string& what);

} // namespace Measuring
