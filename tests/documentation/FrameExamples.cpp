#include "FrameExamples.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

constexpr char kBuild[] = "{build}";
constexpr std::size_t kBuildLength = sizeof kBuild - 1;
constexpr char kWordsStart[] = "  # ";

} // namespace

std::string bytesOf(const std::string& text, const std::string& buildTime) {
    std::string bytes;
    const std::size_t size = std::min(text.find(kWordsStart), text.size());
    for (std::size_t at = 0; at < size;) {
        if (text[at] == ' ') {
            ++at;
        } else if (text[at] == '"') {
            const std::size_t end = text.find('"', at + 1);
            if (end == std::string::npos)
                throw std::invalid_argument("no closing quotation mark: " + text);
            bytes += text.substr(at + 1, end - at - 1);
            at = end + 1;
        } else if (text.compare(at, kBuildLength, kBuild) == 0) {
            bytes += buildTime;
            at += kBuildLength;
        } else {
            std::size_t used = 0;
            bytes += static_cast<char>(std::stoul(text.substr(at, 2), &used, 16));
            if (used != 2)
                throw std::invalid_argument("not a byte: " + text.substr(at));
            at += 2;
        }
    }
    return bytes;
}

std::string wordsBehind(const std::string& text) {
    const std::size_t start = text.find(kWordsStart);
    return start == std::string::npos ? "" : text.substr(start + std::strlen(kWordsStart));
}
