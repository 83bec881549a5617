#include "support/UnitFixture.h"

#include <signal.h>

#include <cstdlib>
#include <filesystem>

UnitFixture::UnitFixture() {
    if (!std::filesystem::is_directory("/dev/nvsku")) {
        ADD_FAILURE() << "This is no unit. Run the program with 'headunit exec --'.";
        std::exit(EXIT_FAILURE);
    }
    ::signal(SIGPIPE, SIG_IGN);
    // Cases may also share a unit.
    for (const char* path : {kCaptureFile, "/tmp/ran", "/tmp/go", "/tmp/written"})
        remove(path);
}

void UnitFixture::remove(const std::string& path) {
    std::filesystem::remove_all(path);
}
