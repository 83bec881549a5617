// Where the test pictures are stored, and where they are unpacked to.
#include "commands/GCmd.h"
#include "commands/PictureFile.h"
#include "core/Diagnostics.h"

namespace {

constexpr char kPackedFolder[] = "/mnt/app/vrk/production/";
constexpr char kPackedEnding[] = ".gz";
constexpr char kUnpackedFolder[] = "/tmp/";

constexpr char kNotRemoved[] = "Could not remove the unzipped image file, dest path: %s";
constexpr char kNotStored[] = "path to test image not found";
constexpr char kNotUnpacked[] = "unzipping bitmap failed: %s";

} // namespace

const char* const GCmd::test_screens[kScreens] = {
    "colorscale_7bars_888_800x480.bmp",
    "greyscale_33bars_888_800x480.bmp",
    "greyscale_11bars_888_800x480.bmp",
};

ProcessResponse GCmd::unzipTestScreen(int index, std::string& path) {
    const std::string name = test_screens[index];
    const std::string source = kPackedFolder + name + kPackedEnding;
    const std::string destination = kUnpackedFolder + name;
    if (!PictureFile::isUnpacked(destination.c_str())) {
        if (!PictureFile::clear(destination.c_str()))
            printDiagnostic(kNotRemoved, destination.c_str());
        if (!PictureFile::isPacked(source.c_str()))
            return ProcessResponse(ProcessResponse::kGenericError, kNotStored);
        if (unzipFile(source.c_str(), destination.c_str()) != 0)
            return ProcessResponse(ProcessResponse::kGenericError, kNotUnpacked,
                                   m_lastUnpackingError.c_str());
    }
    path = destination;
    return ProcessResponse(ProcessResponse::kSuccess);
}

int GCmd::unzipFile(const char* source, const char* destination) {
    constexpr int kFailed = -1;
    m_lastUnpackingError = PictureFile::unpack(source, destination);
    return m_lastUnpackingError.empty() ? 0 : kFailed;
}
