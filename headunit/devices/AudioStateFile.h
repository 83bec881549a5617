#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "wire/Descriptor.h"

namespace headunit {

/// What the unit's audio driver does, as the two sides share it: a file that the driver holds a lock on
/// as long as it runs, so that nobody mistakes what a dead one left behind for its state.
enum class AudioState { stopped, inactive, active };

/// That file in the unit's tree.
constexpr char kAudioStateFile[] = "/run/headunit/audio";

/// "stopped", "inactive", "active".
const char* nameOf(AudioState state);

/// The driver's side. Not synchronised.
class AudioStateWriter {
public:
    /// Takes the file, made when it is missing, for this process. Throws UnitError when it cannot be
    /// made or another driver holds it.
    explicit AudioStateWriter(const std::string& path);

    /// Readers see the old state or the new one. Throws UnitError.
    void write(AudioState state) const;

private:
    std::string m_path;
    System::Descriptor m_file;
};

/// What somebody else sees.
struct AudioReport {
    AudioState state = AudioState::stopped;
    pid_t driver = 0; ///< 0 when it does not run, or cannot be named here
};

AudioReport readAudioState(const std::string& path);

} // namespace headunit
