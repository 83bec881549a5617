#include "commands/PictureFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "core/Diagnostics.h"
#include "core/StringFormat.h"
#include "platform/Uninterrupted.h"
#include "wire/Descriptor.h"

namespace {

// The viewer may run as another user.
constexpr mode_t kMode = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

constexpr char kCannotOpenSource[] = "cannot open %s for gzread()ing: %s\n";
constexpr char kCannotOpenDestination[] = "cannot open %s for writing: %s\n";
constexpr char kNoMemory[] = "cannot alloc %d bytes";
constexpr char kNothingRead[] = "read on %s error %s occurred\n";
constexpr char kCannotRead[] = "gzread on %s error %s occurred\n";
constexpr char kTooShort[] = "%s unpacks to %d bytes instead of %d, the rest is zero";
constexpr char kCannotWrite[] = "cannot write %s: %s\n";

struct CloseCompressed {
    void operator()(gzFile file) const { ::gzclose(file); }
};
using CompressedFile = std::unique_ptr<gzFile_s, CloseCompressed>;

struct FreeMemory {
    void operator()(char* bytes) const { std::free(bytes); }
};
using Picture = std::unique_ptr<char, FreeMemory>;

/// Everything but a regular file is refused: a link may lead anywhere, and a pipe may block its writer.
System::Descriptor openDestination(const char* path) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    System::Descriptor file(System::uninterrupted([path] { return ::open(path, kFlags, kMode); }));
    struct stat information {};
    if (!file)
        return file;
    if (::fstat(file.get(), &information) == 0 && S_ISREG(information.st_mode)) {
        ::fchmod(file.get(), kMode); // whatever the process takes away from new files
        return file;
    }
    file.reset();
    errno = EINVAL;
    return file;
}

/// Returns 0 or an error number. What the system notices only when the file is closed counts, too.
int writeAndClose(System::Descriptor& file, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = System::uninterrupted([&] { return ::write(file.get(), bytes, size); });
        if (written < 0)
            return errno;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return file.close();
}

std::string copyPicture(gzFile packed, const char* source, System::Descriptor& unpacked,
                        const char* destination) {
    const Picture picture(static_cast<char*>(std::calloc(PictureFile::kBytes, 1)));
    if (picture == nullptr)
        return string_format(kNoMemory, PictureFile::kBytes);
    errno = 0;
    const int count = ::gzread(packed, picture.get(), PictureFile::kBytes);
    if (count == 0)
        return string_format(kNothingRead, source, std::strerror(errno));
    if (count < 0) {
        int ignored = 0;
        return string_format(kCannotRead, source, ::gzerror(packed, &ignored));
    }
    // A display shows whatever there is; who looks for the rest finds the reason on standard error.
    if (count < PictureFile::kBytes)
        printDiagnostic(kTooShort, source, count, PictureFile::kBytes);
    if (const int error = writeAndClose(unpacked, picture.get(), PictureFile::kBytes); error != 0)
        return string_format(kCannotWrite, destination, std::strerror(error));
    return {};
}

} // namespace

bool PictureFile::isPacked(const char* path) {
    struct stat information {};
    return ::stat(path, &information) == 0 && S_ISREG(information.st_mode) && ::access(path, R_OK) == 0;
}

bool PictureFile::isUnpacked(const char* path) {
    struct stat information {};
    return ::stat(path, &information) == 0 && S_ISREG(information.st_mode) &&
           information.st_size == kBytes && ::access(path, R_OK) == 0;
}

bool PictureFile::clear(const char* path) {
    return std::remove(path) == 0 || errno == ENOENT;
}

std::string PictureFile::unpack(const char* source, const char* destination) {
    errno = 0;
    const CompressedFile packed(::gzopen(source, "r"));
    if (packed == nullptr) {
        const int error = errno == 0 ? ENOMEM : errno; // the library does not set it for want of memory
        return string_format(kCannotOpenSource, source, std::strerror(error));
    }
    System::Descriptor unpacked = openDestination(destination);
    if (!unpacked)
        return string_format(kCannotOpenDestination, destination, std::strerror(errno));
    std::string failure = copyPicture(packed.get(), source, unpacked, destination);
    if (!failure.empty())
        ::unlink(destination);
    return failure;
}
