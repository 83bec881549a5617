#include "FrameExamples.h"

#include <stdexcept>

namespace {

constexpr char kBlockStart[] = "```exchange frames";
constexpr char kBlockEnd[] = "```";
constexpr char kBuild[] = "{build}";
constexpr std::size_t kBuildLength = sizeof kBuild - 1;

} // namespace

std::vector<std::vector<FrameExample>> readFrameExamples(std::istream& document) {
    std::vector<std::vector<FrameExample>> blocks;
    bool inside = false;
    for (std::string line; std::getline(document, line);) {
        if (!inside) {
            inside = line == kBlockStart;
            if (inside)
                blocks.emplace_back();
        } else if (line == kBlockEnd) {
            inside = false;
        } else if (line.rfind("> ", 0) == 0 || line.rfind("< ", 0) == 0) {
            blocks.back().push_back({line[0] == '>', line.substr(2)});
        } else {
            throw std::invalid_argument("neither sent nor received: " + line);
        }
    }
    return blocks;
}

std::vector<unsigned char> bytesOf(const std::string& text,
                                   const std::vector<unsigned char>& buildTime) {
    std::vector<unsigned char> bytes;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == ' ') {
            ++at;
        } else if (text[at] == '"') {
            const std::size_t end = text.find('"', at + 1);
            if (end == std::string::npos)
                throw std::invalid_argument("no closing quotation mark: " + text);
            bytes.insert(bytes.end(), text.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                         text.begin() + static_cast<std::ptrdiff_t>(end));
            at = end + 1;
        } else if (text.compare(at, kBuildLength, kBuild) == 0) {
            bytes.insert(bytes.end(), buildTime.begin(), buildTime.end());
            at += kBuildLength;
        } else {
            std::size_t used = 0;
            bytes.push_back(static_cast<unsigned char>(std::stoul(text.substr(at, 2), &used, 16)));
            if (used != 2)
                throw std::invalid_argument("not a byte: " + text.substr(at));
            at += 2;
        }
    }
    return bytes;
}
