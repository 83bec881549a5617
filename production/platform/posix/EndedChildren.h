#pragma once

namespace System {

/// Collects every child of the process that has ended. Whoever wants to know how one of them ended has
/// to have waited for it before. Does not block.
void collectEndedChildren();

} // namespace System
