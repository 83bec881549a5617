#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "transfer/Unit.h"

namespace station {

/// The blocks from `first` to `last`, both included.
struct BlockRange {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
};

/// What is to be moved, as the command line says it; files are not looked at yet.
struct Order {
    enum class Kind { Upload, Download, Dump, Flash };

    Kind kind = Kind::Upload;
    std::string name; ///< as on the command line, for example "memory upload"
    std::string file;
    std::uint64_t offset = 0;                        ///< upload, download: in the scratch buffer, bytes
    std::uint64_t length = 0;                        ///< download: bytes
    DeviceId device = {};                            ///< dump, flash
    std::uint64_t firstBlock = 0;                    ///< flash
    std::optional<BlockRange> blocks = std::nullopt; ///< dump: nothing for all of the device
    std::string progress;                            ///< empty when not given
};

/// Decimal, hexadecimal (0x10) or octal (010), as the unit reads a number. Throws `Failure`
/// (`InvalidRequest`) for anything else; `what` names the number in its message.
std::uint64_t parseNumber(const std::string& text, const std::string& what);

/// 177 to 180, or disk, disc, usb, sd. Throws `Failure` (`InvalidRequest`).
unsigned parseDeviceType(const std::string& text);

/// A number as above, of at most 31 bits.
std::uint64_t parseBlock(const std::string& text);

/// A..B, or A for one block. Throws `Failure` (`InvalidRequest`).
BlockRange parseBlocks(const std::string& text);

} // namespace station
