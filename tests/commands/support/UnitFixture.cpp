#include "support/UnitFixture.h"

#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

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

void UnitFixture::write(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    file.close();
    ASSERT_TRUE(file) << path;
}

void UnitFixture::remove(const std::string& path) {
    std::filesystem::remove_all(path);
}

std::string UnitFixture::read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool UnitFixture::exists(const std::string& path) {
    return std::filesystem::exists(std::filesystem::symlink_status(path));
}
