#pragma once

#include <istream>
#include <string>
#include <vector>

/// One line of a block.
struct ExchangeLine {
    bool isSent;      ///< by the station; otherwise by the unit
    std::string text; ///< what stands behind "> " or "< "
};

/// An example of a document, in the notation of its kind.
struct ExchangeBlock {
    std::string kind;
    std::vector<ExchangeLine> lines;
};

/// The fenced blocks that are marked `exchange KIND` with one of these kinds, in their order. Throws
/// std::invalid_argument when one holds anything but lines that begin with "> " or "< ".
std::vector<ExchangeBlock> readExchangeBlocks(std::istream& document,
                                              const std::vector<std::string>& kinds);
