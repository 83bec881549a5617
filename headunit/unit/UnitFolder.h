#pragma once

#include <string>

#include "unit/UnitTree.h"

namespace headunit {

/// A unit's tree in a folder of its own: what the unit sees at /dev, /mnt/app, /ifs, /vrk, /tmp and
/// /run/headunit lies in that folder under the same names and may change while the unit runs. Beside
/// them lie links to the pictures of what the unit's displays show.
class UnitFolder : public UnitTree {
public:
    /// A fresh folder "headunit-XXXXXX" under ${TMPDIR:-/tmp},
    /// removed with this object. Throws UnitError.
    static UnitFolder temporary();

    /// The given folder, made when it is missing, with
    /// whatever it holds; never removed. Throws UnitError.
    static UnitFolder kept(const std::string& folder);

    UnitFolder(UnitFolder&& other) noexcept;
    UnitFolder& operator=(UnitFolder&&) = delete;
    ~UnitFolder() override;

    /// Absolute, without links.
    const std::string& path() const { return m_path; }

    std::string hostPath(const std::string& unitPath) const override;
    std::string claim(const std::string& unitPath) override;

private:
    UnitFolder(std::string path, bool removed);
    void layOut() const;

    std::string m_path;
    bool m_removed;
};

} // namespace headunit
