#include "devices/AudioDriver.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "unit/UnitError.h"

namespace headunit {
namespace {

int signalFor(AudioState wanted) {
    switch (wanted) {
        case AudioState::active:
            return SIGUSR1;
        case AudioState::inactive:
            return SIGUSR2;
        default:
            return SIGTERM;
    }
}

} // namespace

AudioDriver::~AudioDriver() {
    if (!m_path.empty())
        ::unlink(m_path.c_str());
}

void AudioDriver::install(UnitTree& tree) {
    m_path = tree.claim(kAudioStateFile);
    ::unlink(m_path.c_str());
}

void AudioDriver::ask(AudioState wanted) const {
    const AudioReport report = readAudioState(m_path);
    if (report.state == AudioState::stopped)
        throw UnitError("the audio driver does not run");
    if (report.driver <= 0 || ::kill(report.driver, signalFor(wanted)) != 0)
        throw UnitError("the audio driver cannot be signalled from here");
}

} // namespace headunit
