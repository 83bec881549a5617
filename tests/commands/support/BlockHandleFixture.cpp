#include "support/BlockHandleFixture.h"

namespace fs = std::filesystem;

int descriptorOf(const std::string& path) {
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (fs::read_symlink(entry.path(), error) == path && !error)
            return std::stoi(entry.path().filename().string());
    }
    return -1;
}

void expectSuccess(const DeviceResult& result) {
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.message, "");
}

void expectFailure(const DeviceResult& result, const std::string& text, int code) {
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.message, text);
}
