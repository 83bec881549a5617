#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "wire/Descriptor.h"

/// What open files hold, for the commands that answer it. A file that grows meanwhile is cut at the size
/// it had at first. Each returns 0, or the error number that reading failed with; ENOMEM, before
/// anything is read, for what would leave the system short of memory. They do not throw.
namespace FileContent {

/// What a text made here can grow by in its place: an answer becomes a line without being copied.
constexpr std::size_t kRoomToGrow = 64;

/// Fills `piece` from `position` on; shortens it where the file ends. The one that throws when memory is
/// short.
int fill(const System::Descriptor& file, std::string& piece, off_t position);

/// Appends the whole content to `text`.
int append(const System::Descriptor& file, std::string& text) noexcept;

/// Appends the whole content to `text` in base64. It is encoded piece by piece while it is read.
int appendBase64(const System::Descriptor& file, std::string& text) noexcept;

} // namespace FileContent
