// The simulated displays' file of what they show: whatever it holds, what is read of it is written so
// that the same is read again.

#include <string>

#include "Expect.h"
#include "displays/DisplayState.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const headunit::DisplayState state = headunit::displayStateOf(text);
    for (const int display : headunit::DisplayState::kDisplays)
        expect(!describe(shownOn(state, display)).empty(), "A display shows something");
    const std::string written = textOf(state);
    expectSame(written, textOf(headunit::displayStateOf(written)), "a state that was written");
    return 0;
}
