#include "devices/BlockMedium.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr std::size_t kSectorSize = 512;
constexpr std::string_view kJump("\xEB\x3C\x90");
constexpr std::size_t kMakerPlace = 3;
constexpr std::string_view kMaker = "HEADUNIT";
constexpr std::size_t kLabelFollowsPlace = 38;
constexpr char kLabelFollows = '\x29';
constexpr std::size_t kLabelPlace = 43;
constexpr std::size_t kSignaturePlace = 510;
constexpr std::string_view kSignature("\x55\xAA");

bool exists(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

/// Beside the node, so that the content never has to be copied.
std::string asidePath(std::string_view unitPath) {
    const std::filesystem::path node(unitPath);
    return (node.parent_path() / ("." + node.filename().string() + "-removed")).string();
}

void move(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0)
        throw systemError("cannot move " + from + " to " + to, errno);
}

} // namespace

void BlockMedium::install(UnitTree& tree) {
    m_node = tree.claim(std::string(m_unitPath));
    m_aside = tree.claim(asidePath(m_unitPath));
    m_tree = &tree;
}

bool BlockMedium::isInserted() const {
    return exists(m_node);
}

bool BlockMedium::isAside() const {
    return exists(m_aside);
}

void BlockMedium::insert() {
    if (isInserted())
        throw UnitError(std::string(m_name) + " is inserted already");
    if (isAside())
        return move(m_aside, m_node);
    m_tree->createFile(std::string(m_unitPath), bootSector(m_label), kSize);
}

void BlockMedium::remove() {
    if (!isInserted())
        throw UnitError(std::string(m_name) + " is not inserted");
    if (isAside())
        throw UnitError(m_aside + " holds another " + std::string(m_name) + "; it is left as it is");
    move(m_node, m_aside);
}

std::string bootSector(std::string_view label) {
    std::string sector(kSectorSize, '\0');
    std::string padded(label);
    padded.resize(BlockMedium::kLabelLength, ' ');
    sector.replace(0, kJump.size(), kJump);
    sector.replace(kMakerPlace, kMaker.size(), kMaker);
    sector[kLabelFollowsPlace] = kLabelFollows;
    sector.replace(kLabelPlace, padded.size(), padded);
    sector.replace(kSignaturePlace, kSignature.size(), kSignature);
    return sector;
}

} // namespace headunit
