#include "control/AudioControl.h"

#include "control/ControlWords.h"

namespace headunit {
namespace {

std::string ask(UnitDevices& devices, const ControlArguments& arguments) {
    const Choice<AudioState> states[] = {{nameOf(AudioState::active), AudioState::active},
                                         {nameOf(AudioState::inactive), AudioState::inactive},
                                         {nameOf(AudioState::stopped), AudioState::stopped}};
    devices.audio.ask(chosen(states, arguments[0]));
    return {};
}

} // namespace

ControlRows audioControl() {
    return {{"audio", 1, 1, "active|inactive|stopped", ask}};
}

} // namespace headunit
