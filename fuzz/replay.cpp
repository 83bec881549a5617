// Runs a fuzzer's inputs without a fuzzer: replay FILE-OR-FOLDER... names each file before it is run, so
// that the last one is it when a run ends the process.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* count, char*** arguments);

/// The fuzzer's own mutator, which a target's may call: nobody mutates anything here.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t*, std::size_t size, std::size_t) {
    return size;
}

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> filesIn(const fs::path& path) {
    if (!fs::is_directory(path))
        return {path};
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(path))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

void run(const fs::path& file) {
    std::fprintf(stderr, "%s\n", file.c_str());
    std::ifstream stream(file, std::ios::binary);
    const std::string content(std::istreambuf_iterator<char>(stream), {});
    if (!stream)
        throw std::runtime_error("cannot be read");
    // In a block of just its size, so that an address sanitizer sees what reads on.
    const auto input = std::make_unique<std::uint8_t[]>(content.size());
    std::copy(content.begin(), content.end(), input.get());
    LLVMFuzzerTestOneInput(input.get(), content.size());
}

std::size_t runAll(int count, char** arguments) {
    if (LLVMFuzzerInitialize != nullptr)
        LLVMFuzzerInitialize(&count, &arguments);
    std::size_t runs = 0;
    for (int at = 1; at < count; ++at)
        for (const fs::path& file : filesIn(arguments[at])) {
            run(file);
            ++runs;
        }
    return runs;
}

} // namespace

int main(int count, char** arguments) {
    try {
        const std::size_t runs = runAll(count, arguments);
        std::fprintf(stderr, "%zu inputs\n", runs);
        return runs > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return EXIT_FAILURE;
    }
}
