#pragma once

#include <string>

/// The files of the test pictures: stored compressed, unpacked before they are shown.
namespace PictureFile {

/// An unpacked picture: 800 x 480 pixels of three bytes each, behind a header of 54 bytes.
constexpr int kBytes = 800 * 480 * 3 + 54;

/// Whether there is a file to unpack. What is no regular file could block its reader.
bool isPacked(const char* path);

/// Whether a picture of the right size lies there. A link does not count, wherever it leads.
bool isUnpacked(const char* path);

/// Whether a symbolic link lies there.
bool isLink(const char* path);

/// Unpacks `source`: `destination` gets the first `kBytes` of it. One that has fewer is refused.
/// Replaces the content of a regular file, never of anything else. Returns the reason why it cannot be
/// done, with a destination that was begun removed; empty on success.
std::string unpack(const char* source, const char* destination);

} // namespace PictureFile
