#include "commands/AudioStart.h"

#include <filesystem>

#include "devices/AudioDriver.h"
#include "unit/ChildProcess.h"
#include "unit/HostSystem.h"
#include "unit/UnitError.h"

namespace headunit {

std::string audioDriverProgram() {
    return (std::filesystem::path(ownProgram()).parent_path() / AudioDriver::kProcess).string();
}

void startAudioDriver(const std::string& program) {
    if (const int status = ChildProcess({program}).wait(); status != 0)
        throw UnitError("the audio driver ended with status " + std::to_string(status));
}

} // namespace headunit
