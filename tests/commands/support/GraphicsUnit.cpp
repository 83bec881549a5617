#include "support/GraphicsUnit.h"

#include <filesystem>
#include <sstream>

namespace fs = std::filesystem;

namespace {

constexpr char kToolFolder[] = "/vrk/bin/apps";
constexpr char kPackedFolder[] = "/mnt/app/vrk/production";

constexpr char kCalls[] = "/tmp/tool-calls";
constexpr char kEnvironment[] = "/tmp/tool-environment";
constexpr char kFailing[] = "/tmp/tool-failing";
constexpr char kHanging[] = "/tmp/tool-hanging";

constexpr char kTool[] =
    "#!/bin/sh\n"
    "IFS='|'\n"
    "set -- \"${0##*/}\" \"$@\"\n"
    "call=\"$*\"\n"
    "echo \"$call\" >> /tmp/tool-calls\n"
    "echo \"$LD_LIBRARY_PATH $IPL_CONFIG_DIR\" > /tmp/tool-environment\n"
    "if grep -qxF -e \"$call\" /tmp/tool-hanging; then sleep 1000; fi\n"
    "if grep -qxF -e \"$call\" /tmp/tool-failing; then kill -9 \"$PPID\"; fi\n";

constexpr const char* kPictures[] = {
    "colorscale_7bars_888_800x480.bmp",
    "greyscale_33bars_888_800x480.bmp",
    "greyscale_11bars_888_800x480.bmp",
};

std::string linesOf(const Calls& calls) {
    std::string lines;
    for (const std::string& call : calls)
        lines += call + "\n";
    return lines;
}

} // namespace

GraphicsUnit::GraphicsUnit() {
    // Cases may also share a unit.
    for (const char* path : {kToolFolder, kPackedFolder, kCalls, kEnvironment})
        remove(path);
    fs::create_directories(kToolFolder);
    fs::create_directories(kPackedFolder);
    for (const char* name : {"showimage", "dmdt"}) {
        const std::string path = std::string(kToolFolder) + "/" + name;
        write(path, kTool);
        fs::permissions(path, fs::perms::owner_all);
    }
    for (unsigned index = 0; index < GCmd::kScreens; ++index) {
        remove(unpackedPath(index));
        pack(packedPath(index), pictureContent(index));
    }
    failAt({});
    hangAt("");
    setImageVersion("PAG\n");
}

void GraphicsUnit::setImageVersion(const std::string& text) {
    write("/mnt/app/img_ver.txt", text);
}

void GraphicsUnit::failAt(const Calls& calls) {
    write(kFailing, linesOf(calls));
}

void GraphicsUnit::hangAt(const std::string& call) {
    write(kHanging, call + "\n");
}

Calls GraphicsUnit::calls() {
    std::istringstream lines(read(kCalls));
    remove(kCalls);
    Calls all;
    for (std::string line; std::getline(lines, line);)
        all.push_back(line);
    return all;
}

std::string GraphicsUnit::environment() {
    return read(kEnvironment);
}

std::string GraphicsUnit::packedPath(unsigned index) {
    return std::string(kPackedFolder) + "/" + kPictures[index] + ".gz";
}

std::string GraphicsUnit::unpackedPath(unsigned index) {
    return std::string("/tmp/") + kPictures[index];
}

void GraphicsUnit::expectToolFailure(const ProcessResponse& response) {
    EXPECT_EQ(response.code, kGenericError);
    EXPECT_THAT(response.message,
                ::testing::MatchesRegex(
                    "child process for c command received signal pid: [0-9]+, returncode: 9"));
    EXPECT_EQ(response.protocol, 0);
}

Calls joined(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Calls showing(unsigned index, unsigned display) {
    return {"showimage|h|0", "showimage|h|4", std::string("showimage|si|/tmp/") + kPictures[index],
            "showimage|s|" + std::to_string(display)};
}
