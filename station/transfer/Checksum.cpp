#include "transfer/Checksum.h"

#include <algorithm>
#include <vector>

#include "wire/CRCDivision.h"

namespace station {

namespace {

namespace Division = System::CRCDivision;

std::uint32_t divide(std::uint32_t value, std::string_view bytes) {
    const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
    if (Division::libraryDivide != nullptr)
        return Division::libraryDivide(value, first, bytes.size());
    static const std::vector<std::uint32_t> tables = [] {
        std::vector<std::uint32_t> filled(Division::kTables * Division::kTableEntries);
        Division::fillTables(filled.data());
        return filled;
    }();
    return Division::divide(tables.data(), value, first, bytes.size());
}

} // namespace

void Checksum::add(std::string_view bytes) {
    const std::size_t known = m_last.size() + bytes.size();
    const std::size_t divided = known - std::min(known, kFewestBytes);
    const std::string_view earlier = std::string_view(m_last).substr(0, divided);
    const std::string_view later = bytes.substr(0, divided - earlier.size());
    m_register = divide(divide(m_register, earlier), later);
    m_last.erase(0, earlier.size());
    m_last += bytes.substr(later.size());
}

std::optional<std::uint32_t> Checksum::value() const {
    if (m_last.size() < kFewestBytes)
        return std::nullopt;
    return Division::finish(m_register, reinterpret_cast<const unsigned char*>(m_last.data()));
}

std::optional<std::uint32_t> checksumOf(std::string_view bytes) {
    Checksum checksum;
    checksum.add(bytes);
    return checksum.value();
}

} // namespace station
