#include "support/ExchangeBlocks.h"

#include <algorithm>
#include <stdexcept>

namespace {

const std::string kBlockStart = "```exchange ";
constexpr char kBlockEnd[] = "```";

} // namespace

std::vector<ExchangeBlock> readExchangeBlocks(std::istream& document,
                                              const std::vector<std::string>& kinds) {
    std::vector<ExchangeBlock> blocks;
    bool isInside = false;
    for (std::string line; std::getline(document, line);) {
        if (!isInside) {
            const bool isStart = line.rfind(kBlockStart, 0) == 0;
            const std::string kind = isStart ? line.substr(kBlockStart.size()) : "";
            isInside = std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
            if (isInside)
                blocks.push_back({kind, {}});
        } else if (line == kBlockEnd) {
            isInside = false;
        } else if (line.rfind("> ", 0) == 0 || line.rfind("< ", 0) == 0) {
            blocks.back().lines.push_back({line[0] == '>', line.substr(2)});
        } else {
            throw std::invalid_argument("neither sent nor received: " + line);
        }
    }
    return blocks;
}
