#include "support/UnitLines.h"

#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr const char* kNodes[] = {"/dev/ser1", "/dev/NAD/AT_port", "/dev/ser3",
                                  "/dev/usbserialadapter1"};

void place(const Line& line, const fs::path& node) {
    fs::create_directories(node.parent_path());
    fs::remove(node);
    fs::create_symlink(line.path(), node);
}

} // namespace

UnitLines::UnitLines() {
    if (!fs::is_directory("/dev/nvsku")) {
        ADD_FAILURE() << "This is no unit. Run the program with 'headunit exec --'.";
        std::exit(EXIT_FAILURE);
    }
    for (unsigned number = 0; number < kChannels; ++number)
        place(m_lines[number], kNodes[number]);
    EXPECT_THAT(m_comm.setInterface(Comm::On), isSuccess());
}

Comm::Handle& UnitLines::channel(unsigned number) {
    Comm::Handle* handle = nullptr;
    EXPECT_THAT(m_comm.device(&handle, number), isSuccess());
    return *handle;
}

Comm::Handle& UnitLines::openChannel(unsigned number) {
    Comm::Handle& handle = channel(number);
    EXPECT_THAT(handle.open(115200, 8, 1, Comm::Handle::None), isSuccess());
    m_calls.forget();
    return handle;
}
