#pragma once

#include <string>

#include "devices/AudioStateFile.h"
#include "unit/UnitTree.h"

namespace headunit {

/// The audio driver of the unit, seen from outside: a process that runs inside the unit, started with
/// the daemon, and changes its state on signals. Installed and destroyed while nothing of the unit runs.
/// The tree outlives it.
class AudioDriver {
public:
    static constexpr char kProcess[] = "deva-nvaudio";

    AudioDriver() = default;
    AudioDriver(const AudioDriver&) = delete;
    AudioDriver& operator=(const AudioDriver&) = delete;
    ~AudioDriver();

    /// Claims the name of the state's file and removes what an earlier run left there. Throws UnitError.
    void install(UnitTree& tree);

    AudioState state() const { return readAudioState(m_path).state; }

    /// Sends the signal that asks for this state; the driver takes a moment to follow. Throws UnitError
    /// when it does not run or cannot be reached.
    void ask(AudioState wanted) const;

private:
    std::string m_path; ///< on the host
};

} // namespace headunit
