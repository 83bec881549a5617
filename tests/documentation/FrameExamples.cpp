#include "FrameExamples.h"

#include <stdexcept>

namespace {

constexpr char kFramesStart[] = "```exchange frames";
constexpr char kLinkStart[] = "```exchange link";
constexpr char kBlockEnd[] = "```";
constexpr char kBuild[] = "{build}";
constexpr std::size_t kBuildLength = sizeof kBuild - 1;

} // namespace

std::vector<FrameExamples> readFrameExamples(std::istream& document) {
    std::vector<FrameExamples> blocks;
    bool inside = false;
    for (std::string line; std::getline(document, line);) {
        if (!inside) {
            inside = line == kFramesStart || line == kLinkStart;
            if (inside)
                blocks.push_back({line == kLinkStart, {}});
        } else if (line == kBlockEnd) {
            inside = false;
        } else if (line.rfind("> ", 0) == 0 || line.rfind("< ", 0) == 0) {
            blocks.back().lines.push_back({line[0] == '>', line.substr(2)});
        } else {
            throw std::invalid_argument("neither sent nor received: " + line);
        }
    }
    return blocks;
}

std::string bytesOf(const std::string& text, const std::string& buildTime) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size();) {
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
