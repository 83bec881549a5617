#pragma once

#include <string>

namespace headunit {

/// The name under which a terminal is found: a symbolic link to its path in /dev/pts, removed with this
/// object unless somebody has put something else there meanwhile. The terminal exists before its link
/// and outlives it, so that nobody finds a link to nowhere. Not synchronised.
class NodeLink {
public:
    NodeLink() = default;

    /// Makes the link at `path` on the host. A link to any terminal that stands there is one of an
    /// earlier run and is replaced. Throws UnitError when anything else stands there, which is left as
    /// it is, or the link cannot be made.
    NodeLink(std::string path, std::string terminal);

    NodeLink(NodeLink&& other) noexcept;
    NodeLink& operator=(NodeLink&& other) noexcept;
    ~NodeLink();

    void remove();

private:
    std::string m_path; ///< empty when there is no link
    std::string m_terminal;
};

} // namespace headunit
