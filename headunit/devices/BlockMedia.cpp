#include "devices/BlockMedia.h"

#include <algorithm>

#include "unit/NameList.h"

namespace headunit {

void BlockMedia::install(UnitTree& tree, const std::vector<std::string>& wanted) {
    for (const std::string& name : wanted)
        named(name);
    for (std::size_t i = 0; i < m_media.size(); ++i) {
        BlockMedium& medium = m_media[i];
        medium.install(tree);
        const bool isWanted = std::find(wanted.begin(), wanted.end(), medium.name()) != wanted.end();
        const bool belongs = i >= kOptional && !medium.isAside();
        if ((isWanted || belongs) && !medium.isInserted())
            medium.insert();
    }
}

BlockMedium& BlockMedia::named(const std::string& name) {
    auto* const medium = std::find_if(m_media.begin(), m_media.end(),
                                      [&](const BlockMedium& known) { return known.name() == name; });
    if (medium == m_media.end())
        throw notOneOf(kNames, name);
    return *medium;
}

} // namespace headunit
