#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "unit/UnitTree.h"

namespace headunit {

/// One medium that the unit reads and writes in blocks: a sparse image file at the device's node. It
/// begins with a boot sector that carries the medium's label. A medium that is taken out keeps its
/// content aside, also over the end of a unit whose folder is kept. Installed before the event loop
/// runs; everything else happens on the loop's thread or while the loop does not run.
class BlockMedium {
public:
    static constexpr std::uint64_t kSize = 64 * 1024 * 1024; ///< bytes
    static constexpr std::size_t kLabelLength = 11;

    /// `name` is what the user calls the medium, `unitPath`
    /// its node, `label` at most kLabelLength characters.
    BlockMedium(std::string_view name, std::string_view unitPath, std::string_view label)
        : m_name(name), m_unitPath(unitPath), m_label(label) {}

    std::string_view name() const { return m_name; }
    std::string_view unitPath() const { return m_unitPath; }
    std::string_view label() const { return m_label; }

    /// Claims the medium's names. Called once. Throws UnitError.
    void install(UnitTree& tree);

    bool isInserted() const;

    /// Whether it was there once and was taken out.
    bool isAside() const;

    /// Puts the node there, with the content that it had, or a fresh image. Throws UnitError when
    /// something stands there.
    void insert();

    /// Takes the node away; who has it open keeps what he has. Throws UnitError when there is none.
    void remove();

private:
    std::string_view m_name;
    std::string_view m_unitPath;
    std::string_view m_label;
    UnitTree* m_tree = nullptr;
    std::string m_node;  ///< on the host
    std::string m_aside; ///< where the content waits while the medium is out
};

/// The first sector of a medium with this label: a jump, the label where boot sectors have it, and the
/// signature 0x55 0xAA at its end.
std::string bootSector(std::string_view label);

} // namespace headunit
