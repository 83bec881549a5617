#include "commands/FileContent.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <new>

#include "core/MemoryGuard.h"
#include "platform/Node.h"
#include "wire/Base64.h"

namespace {

// A whole number of base64's groups of three, and little enough to stay in the processor's cache.
constexpr std::size_t kPiece = std::size_t{48} << 10;
// The text that is made here is a third longer in base64; what becomes of it is made in its place.
constexpr std::uint64_t kCopies = 2;

/// Appends a piece of content to a text in its own way.
using Append = void (*)(const std::string& piece, std::string& text);

void appendAsItIs(const std::string& piece, std::string& text) {
    text += piece;
}

void appendEncoded(const std::string& piece, std::string& text) {
    text += System::encodeBase64(reinterpret_cast<const unsigned char*>(piece.data()), piece.size());
}

/// Whether so many bytes can be read into memory at all.
void requireMemoryFor(off_t size) {
    // Before it becomes a size in memory, which may have fewer bits.
    if (static_cast<std::uint64_t>(size) > std::numeric_limits<std::size_t>::max() / kCopies)
        throw std::bad_alloc();
    MemoryGuard::require(static_cast<std::size_t>(size) * kCopies);
}

int appendPieces(const System::Descriptor& file, off_t size, std::string& text, Append append) {
    std::string piece;
    for (off_t done = 0; done < size; done += static_cast<off_t>(kPiece)) {
        const auto wanted = static_cast<std::size_t>(std::min(size - done, static_cast<off_t>(kPiece)));
        piece.resize(wanted);
        if (const int error = FileContent::fill(file, piece, done); error != 0)
            return error;
        append(piece, text);
        if (piece.size() < wanted) // it has become shorter meanwhile
            break;
    }
    return 0;
}

int appendWhole(const System::Descriptor& file, std::string& text, bool encoded) noexcept {
    try {
        const off_t size = System::nodeSize(file.get());
        if (size < 0)
            return errno;
        requireMemoryFor(size);
        const auto bytes = static_cast<std::size_t>(size);
        text.reserve(text.size() + (encoded ? (bytes + 2) / 3 * 4 : bytes) + FileContent::kRoomToGrow);
        return appendPieces(file, size, text, encoded ? appendEncoded : appendAsItIs);
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    }
}

} // namespace

int FileContent::fill(const System::Descriptor& file, std::string& piece, off_t position) {
    std::size_t filled = 0;
    do {
        const ssize_t count =
            System::readNodeAt(file.get(), piece.data() + filled, piece.size() - filled,
                               position + static_cast<off_t>(filled));
        if (count < 0)
            return errno;
        if (count == 0)
            piece.resize(filled);
        filled += static_cast<std::size_t>(count);
    } while (filled < piece.size());
    return 0;
}

int FileContent::append(const System::Descriptor& file, std::string& text) noexcept {
    return appendWhole(file, text, false);
}

int FileContent::appendBase64(const System::Descriptor& file, std::string& text) noexcept {
    return appendWhole(file, text, true);
}
