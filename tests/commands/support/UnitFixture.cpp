#include "support/UnitFixture.h"

#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/ProcessResponseAscii.h"
#include "core/ProcessResponseTavrin.h"

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

const Bytes& frameOf(const ProcessResponse& response) {
    static const Bytes none;
    EXPECT_EQ(response.protocol, 't');
    return response.protocol == 't' ? static_cast<const ProcessResponseTavrin&>(response).data : none;
}

const std::string& answerOf(const ProcessResponse& response) {
    static const std::string none;
    EXPECT_EQ(response.protocol, 'a');
    return response.protocol == 'a' ? static_cast<const ProcessResponseAscii&>(response).answer : none;
}
