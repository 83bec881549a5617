#pragma once

#include <cstdint>
#include <vector>

#include "model/Dice.h"
#include "model/Model.h"
#include "model/Request.h"

/// Whether each link carries frames, or lines.
using Links = std::vector<bool>;

/// A sequence of so many requests for a fresh unit, which the seed decides. Phases in which all links
/// speak at once take turns with such in which one of them is alone. In the end one link reads all that
/// the others should have left behind. The model is that of the fresh unit, and is used up.
Sequence generate(std::uint64_t seed, std::size_t count, const Links& links, Model& model);
