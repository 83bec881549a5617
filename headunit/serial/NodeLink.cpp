#include "serial/NodeLink.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr char kTerminals[] = "/dev/pts/";
constexpr std::size_t kLongestTerminal = 64;

/// Where the link leads, empty when there is none.
std::string targetOf(const std::string& path) {
    std::array<char, kLongestTerminal> target;
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : "";
}

bool isTerminal(const std::string& target) {
    const std::size_t start = std::strlen(kTerminals);
    return target.size() > start && target.compare(0, start, kTerminals) == 0 &&
           target.find_first_not_of("0123456789", start) == std::string::npos;
}

} // namespace

NodeLink::NodeLink(std::string path, std::string terminal) {
    if (isTerminal(targetOf(path)))
        ::unlink(path.c_str());
    // Appears whole, and never in the place of something else.
    if (::symlink(terminal.c_str(), path.c_str()) != 0) {
        const int error = errno;
        if (error == EEXIST)
            throw UnitError(path + " exists and is no link to a terminal; it is left as it is");
        throw systemError("cannot make " + path, error);
    }
    m_path = std::move(path);
    m_terminal = std::move(terminal);
}

NodeLink::NodeLink(NodeLink&& other) noexcept
    : m_path(std::exchange(other.m_path, {})), m_terminal(std::move(other.m_terminal)) {}

NodeLink& NodeLink::operator=(NodeLink&& other) noexcept {
    std::swap(m_path, other.m_path);
    std::swap(m_terminal, other.m_terminal);
    return *this;
}

NodeLink::~NodeLink() {
    remove();
}

void NodeLink::remove() {
    if (!m_path.empty() && targetOf(m_path) == m_terminal)
        ::unlink(m_path.c_str());
    m_path.clear();
}

} // namespace headunit
