// make_stored_pictures FILE: writes the C++ source that holds the unit's test pictures as the unit
// stores them, drawn and compressed once when headunit is built.
#include <zlib.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "pictures/BitmapFile.h"
#include "pictures/TestPictures.h"

namespace {

constexpr int kWithGzipHead = 15 + 16; // the largest window, and the file format around it
constexpr int kMemoryLevel = 8;
constexpr std::size_t kBytesOfLine = 20;

std::string gzip(const std::string& data) {
    z_stream stream{};
    if (::deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, kWithGzipHead, kMemoryLevel,
                       Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("zlib does not start");
    std::string result(::deflateBound(&stream, data.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const int status = ::deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    ::deflateEnd(&stream);
    if (status != Z_STREAM_END)
        throw std::runtime_error("zlib does not compress");
    return result;
}

void writeArray(std::ostream& source, std::size_t number, const std::string& bytes) {
    source << "const unsigned char kBytes" << number << "[] = {";
    for (std::size_t at = 0; at < bytes.size(); ++at)
        source << (at % kBytesOfLine == 0 ? "\n    " : " ")
               << static_cast<unsigned>(static_cast<unsigned char>(bytes[at])) << ',';
    source << "\n};\n\n";
}

void writeSource(std::ostream& source) {
    source << "#include \"devices/StoredPictures.h\"\n\nnamespace headunit {\nnamespace {\n\n";
    for (std::size_t i = 0; i < headunit::kTestPictures.size(); ++i)
        writeArray(source, i, gzip(headunit::encodeBitmap(headunit::kTestPictures[i].draw())));
    source << "template <std::size_t size>\n"
              "std::string_view text(const unsigned char (&bytes)[size]) {\n"
              "    return {reinterpret_cast<const char*>(bytes), size};\n"
              "}\n\n} // namespace\n\n"
              "std::array<StoredPicture, "
           << headunit::kTestPictures.size() << "> storedPictures() {\n    return {{\n";
    for (std::size_t i = 0; i < headunit::kTestPictures.size(); ++i)
        source << "        {\"" << headunit::kTestPictures[i].name << "\", text(kBytes" << i << ")},\n";
    source << "    }};\n}\n\n} // namespace headunit\n";
}

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 2)
            throw std::runtime_error("usage: make_stored_pictures FILE");
        std::ofstream source(argv[1]);
        writeSource(source);
        if (!source.flush())
            throw std::runtime_error(std::string("cannot write ") + argv[1]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_stored_pictures: %s\n", error.what());
        return 1;
    }
}
