#include "support/PackedPicture.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdint>

std::string pictureContent(unsigned number, std::size_t size) {
    std::uint32_t value = number;
    std::string content(size, '\0');
    for (char& byte : content) {
        value = value * 1664525 + 1013904223;
        byte = static_cast<char>(value >> 24);
    }
    return content;
}

void pack(const std::string& path, const std::string& content) {
    gzFile_s* const file = ::gzopen(path.c_str(), "wb1");
    ASSERT_NE(file, nullptr) << path;
    const auto length = static_cast<unsigned>(content.size());
    if (length > 0) { // else the library would take it for a failure
        EXPECT_EQ(::gzwrite(file, content.data(), length), static_cast<int>(length));
    }
    EXPECT_EQ(::gzclose(file), Z_OK);
}

std::string brokenPacking() {
    constexpr char kHeader[] = "\x1F\x8B\x08\0\0\0\0\0\0\x03";
    constexpr char kNoSuchBlock = '\x07';
    return std::string(kHeader, sizeof kHeader - 1) + std::string(64, kNoSuchBlock);
}
