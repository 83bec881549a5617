#include "core/CRC.h"

#include <new>

#include "wire/CRCDivision.h"

namespace System {
std::uint32_t* CRC::crcTab = nullptr;

bool CRC::buildTable() {
    if (crcTab != nullptr)
        return true;
    auto* table = new (std::nothrow) std::uint32_t[CRCDivision::kTables * CRCDivision::kTableEntries];
    if (table == nullptr)
        return false;
    CRCDivision::fillTables(table);
    crcTab = table;
    return true;
}

unsigned int CRC::calc(const unsigned char* data, unsigned int length, unsigned int* crc) {
    if (length < CRCDivision::kUndivided)
        return kTooShort;
    // Also where the library does without it: the result must not tell how the program was built.
    if (!buildTable())
        return kNoMemory;
    *crc = CRCDivision::libraryDivide != nullptr
               ? CRCDivision::checksum(CRCDivision::libraryDivide, data, length)
               : CRCDivision::portable(crcTab, data, length);
    return 0;
}

} // namespace System
