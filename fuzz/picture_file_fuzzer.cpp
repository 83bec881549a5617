// The stored test pictures: whatever a file holds, it becomes a picture's file or none at all.

#include <unistd.h>
#include <zlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "Expect.h"
#include "Input.h"
#include "commands/PictureFile.h"
#include "support/ErrorText.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBytes = PictureFile::kBytes;

/// A folder for the process, removed at its end.
class Folder {
public:
    Folder() {
        if (::mkdtemp(m_path.data()) == nullptr)
            fail("there is no folder " + m_path);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string operator/(const char* name) const { return m_path + "/" + name; }

private:
    std::string m_path = fs::temp_directory_path() / "picture-XXXXXX";
};

void writePlain(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

void writePacked(const std::string& path, std::string_view content) {
    gzFile_s* const file = ::gzopen(path.c_str(), "wb1");
    if (file == nullptr ||
        ::gzwrite(file, content.data(), static_cast<unsigned>(content.size())) !=
            static_cast<int>(content.size()) ||
        ::gzclose(file) != Z_OK)
        fail("the packed file cannot be written");
}

std::string contentOf(const std::string& path) {
    std::string content(static_cast<std::size_t>(fs::file_size(path)), '\0');
    std::ifstream(path, std::ios::binary)
        .read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

/// The input, many times over if it is to be longer than a picture.
std::string contentFrom(std::string_view bytes, bool isLong) {
    std::string content(bytes);
    while (isLong && !bytes.empty() && content.size() <= kBytes)
        content += content;
    return content;
}

/// The first bytes of the content, and zeros.
std::string pictureOf(std::string content) {
    content.resize(kBytes, '\0');
    return content;
}

bool looksPacked(const std::string& content) {
    return content.compare(0, 2, "\x1F\x8B") == 0;
}

} // namespace

/// How it is stored, and what: packed, or as it is; once, or more often than a picture has room for;
/// where something lies already, or not.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder folder;
    const std::string source = folder / "picture.gz";
    const std::string destination = folder / "picture";
    Input input(data, size);
    const unsigned how = input.byte();
    const bool isPacked = (how & 1) != 0;
    const std::string content = contentFrom(input.rest(), (how & 2) != 0);
    (isPacked ? writePacked : writePlain)(source, content);
    expect(PictureFile::isPacked(source.c_str()), "A file is there to be unpacked");
    if ((how & 4) != 0)
        writePlain(destination, "something else");
    const std::string failure = PictureFile::unpack(source.c_str(), destination.c_str());
    const std::string told = ErrorText::taken();
    expectSame<bool>(failure.empty(), PictureFile::isUnpacked(destination.c_str()),
                     "whether there is a picture");
    expectSame<bool>(failure.empty(), fs::exists(destination), "whether anything is left");
    if (isPacked || !looksPacked(content)) {
        expectSame<bool>(!content.empty(), failure.empty(), "whether it can be unpacked");
        expect(content.empty() || contentOf(destination) == pictureOf(content), "It is what was stored");
        expectSame<bool>(!content.empty() && content.size() < kBytes, !told.empty(),
                         "whether the rest is told of");
    }
    expect(PictureFile::clear(destination.c_str()), "It can be cleared away");
    return 0;
}
