#include "devices/PortExpander.h"

#include <iomanip>
#include <sstream>

namespace headunit {

void PortExpander::write(std::string_view bytes) {
    if (!bytes.empty())
        m_outputs = static_cast<std::uint8_t>(bytes.back());
}

std::string PortExpander::read(std::size_t count) {
    return std::string(count, static_cast<char>(pins()));
}

std::string PortExpander::description() const {
    std::ostringstream text;
    text << std::hex << std::uppercase << std::setfill('0') << "outputs " << std::setw(2)
         << unsigned{outputs()} << " pins " << std::setw(2) << unsigned{pins()};
    return text.str();
}

} // namespace headunit
