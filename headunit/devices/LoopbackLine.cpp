#include "devices/LoopbackLine.h"

#include <limits>

namespace headunit {

std::size_t LoopbackLine::room() const {
    return m_connected ? unitEnd().room() : std::numeric_limits<std::size_t>::max();
}

void LoopbackLine::received(std::string_view bytes) {
    if (m_connected)
        unitEnd().send(bytes);
}

} // namespace headunit
