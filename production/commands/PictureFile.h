#pragma once

#include <string>

/// The files of the test pictures: stored compressed, unpacked before they are shown.
namespace PictureFile {

/// An unpacked picture: 800 x 480 pixels of three bytes each, behind a header of 54 bytes.
constexpr int kBytes = 800 * 480 * 3 + 54;

/// Whether there is a file to unpack. What is no regular file could block its reader.
bool isPacked(const char* path);

/// Whether a file of a picture's size can be read there.
bool isUnpacked(const char* path);

/// Removes what lies there, a link and not what it leads to. True when nothing lies there any more; a
/// folder that holds something stays.
bool clear(const char* path);

/// Unpacks `source`: `destination` gets `kBytes` bytes, the first ones of it.
/// Of a shorter one the rest is zero, and standard error says so. Replaces the
/// content of a regular file, never of anything else. Returns the reason why it
/// cannot be done, with a destination that was begun removed; empty on success.
std::string unpack(const char* source, const char* destination);

} // namespace PictureFile
