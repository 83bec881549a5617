#pragma once

#include <string>
#include <vector>

#include "unit/UnitTree.h"
#include "wire/Descriptor.h"

namespace headunit {

/// A unit's tree on the machine itself. It takes only names that are free, writes every name down before
/// it makes it, and removes all of them with this object, the folders only when they are empty by then.
/// Names that an earlier one wrote down and left behind, because it was killed, are its own: they are
/// removed first. One at a time per machine.
class InPlaceTree : public UnitTree {
public:
    /// `record` is where the names are written down. Throws UnitError when another one is at work or the
    /// record cannot be kept.
    explicit InPlaceTree(const std::string& record = "/run/headunit-in-place");
    InPlaceTree(const InPlaceTree&) = delete;
    InPlaceTree& operator=(const InPlaceTree&) = delete;
    ~InPlaceTree() override;

    std::string hostPath(const std::string& unitPath) const override { return unitPath; }
    std::string claim(const std::string& unitPath) override;

private:
    void makeFolder(const std::string& folder);
    void writeDown(const std::string& path);
    void removeAll();

    std::string m_record;
    System::Descriptor m_recordFile; ///< locked as long as this object lives
    std::vector<std::string> m_made; ///< in the order of making
};

} // namespace headunit
