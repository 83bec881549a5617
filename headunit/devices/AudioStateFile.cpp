#include "devices/AudioStateFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr mode_t kFileMode = 0644;
constexpr std::size_t kLongestName = 16;

struct flock wholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

} // namespace

const char* nameOf(AudioState state) {
    switch (state) {
        case AudioState::inactive:
            return "inactive";
        case AudioState::active:
            return "active";
        default:
            return "stopped";
    }
}

AudioStateWriter::AudioStateWriter(const std::string& path)
    : m_path(path), m_file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kFileMode)) {
    if (!m_file)
        throw systemError("cannot open " + path, errno);
    struct flock lock = wholeFile();
    if (::fcntl(m_file.get(), F_SETLK, &lock) != 0)
        throw UnitError("another audio driver runs (" + path + " is locked)");
}

void AudioStateWriter::write(AudioState state) const {
    std::string text = nameOf(state);
    text.resize(kLongestName - 1, ' '); // one length for all: nothing of a longer one is left over
    text += '\n';
    if (::pwrite(m_file.get(), text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()))
        throw systemError("cannot write " + m_path, errno);
}

AudioReport readAudioState(const std::string& path) {
    const System::Descriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    struct flock lock = wholeFile();
    if (!file || ::fcntl(file.get(), F_GETLK, &lock) != 0 || lock.l_type == F_UNLCK)
        return {};
    std::array<char, kLongestName> block{};
    const ssize_t count = ::pread(file.get(), block.data(), block.size(), 0);
    if (count <= 0)
        return {};
    const std::string_view text(block.data(), static_cast<std::size_t>(count));
    const bool active = text.substr(0, text.find(' ')) == nameOf(AudioState::active);
    return {active ? AudioState::active : AudioState::inactive, lock.l_pid};
}

} // namespace headunit
